#include <csignal>

#include "commands.hpp"
#include "common/command_line.hpp"
#include "common/dates.hpp"
#include "common/output.hpp"

int main(int argc, char** argv) {
  program::reserveStandardOutput();
  std::signal(SIGXFSZ, SIG_IGN);  // a file size limit makes writing fail, rather than end the program

  CLI::App app{"Saves, shows and diagnoses the stored status of the user's Mac."};
  program::setExample(app, "echo '{\"status\": \"locked\"}' | tarno-status save && tarno-status show");
  app.require_subcommand(1);

  status::SaveOptions saving;
  auto& save = *app.add_subcommand("save", "Save a status record (JSON) into the shared store");
  save.add_option("FILE", saving.file, "The record; standard input when absent or -");
  program::addDateOption(save, "--received-at", saving.receivedAt,
                         "When the report was received (default: now)");
  save.add_option("--mirror-key", saving.mirrorKey, "A key to keep beside the report")->type_name("KEY");
  program::ClockOption saveClock{save};
  program::setExample(save, "tarno-status save report.json --received-at 2026-11-16T15:41:35Z");

  bool asJSON = false;
  auto& show = *app.add_subcommand("show", "Show the last saved report as the widget would see it");
  show.add_flag("--json", asJSON,
                "Print {\"received_at\": …, \"snapshot\": {…}}, or null when nothing was saved yet");
  program::ClockOption showClock{show};
  program::setExample(show, "tarno-status show --json --at 2026-11-16T15:45:00Z");

  auto& doctor =
      *app.add_subcommand("doctor", "Say where the store is, what it holds and whether saving works");
  program::ClockOption doctorClock{doctor};
  program::setExample(doctor, "tarno-status doctor");

  return program::run(app, argc, argv, [&] {
    saveClock.apply();
    showClock.apply();
    doctorClock.apply();
    if (save.parsed()) return status::save(saving);
    if (show.parsed()) return status::show(asJSON);
    return status::doctor();
  });
}
