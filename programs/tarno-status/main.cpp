#include "tarno/common/command_line.hpp"
#include "tarno/common/dates.hpp"
#include "tarno/common/output.hpp"
#include "tarno/tarno-status/commands.hpp"

namespace {

CLI::App& addSave(CLI::App& app, status::SaveOptions& options) {
  auto& save = *app.add_subcommand("save", "Save a status record (JSON) into the store");
  auto* const file =
      save.add_option("FILE", options.file, "File with the record (default: standard input)")->type_name("");
  auto* const date = program::addDateOption(save, "--received-at", options.receivedAt,
                                            "When the report was received (default: now)");
  save.add_option("--mirror-key", options.mirrorKey,
                  "Also store this text, which only your own programs read")
      ->type_name("KEY");
  auto* const follow = save.add_flag("--follow", options.isFollowing,
                                     "Save each line of standard input, one record per line, as it arrives. "
                                     "A bad line is reported on "
                                     "standard error and skipped. When records arrive faster than they can "
                                     "be saved, only the newest "
                                     "is saved")
                           ->excludes(file)
                           ->excludes(date);
  save.add_flag("--acknowledge", options.acknowledges,
                "Print a line such as 'line 1: saved' for each record that was saved")
      ->needs(follow);
  program::setExample(save,
                      "tarno-status save report.json --received-at 2026-11-16T15:41:35Z\n"
                      "  mosquitto_sub -h localhost -t mac/status | tarno-status save --follow");
  return save;
}

CLI::App& addCheck(CLI::App& app, std::optional<TarnoMacStatus>& expected) {
  auto& check = *app.add_subcommand(
      "check", "Exit with 0 if the last report is fresh, 1 if not, 69 if it cannot be read; print nothing");
  const auto read = [&expected](const std::string& text) {
    expected = TarnoMacStatus::fromRawValue(text);
    if (!expected)
      throw CLI::ValidationError{"STATUS: '" + text + "' is not locked, unlocked, locking or unknown"};
  };
  check
      .add_option_function<std::string>("STATUS", read,
                                        "Also require this status: locked, unlocked, locking or unknown")
      ->type_name("");
  program::setExample(check, "if tarno-status check locked; then echo The Mac is locked.; fi");
  return check;
}

CLI::App& addWatch(CLI::App& app, std::string& format) {
  auto& watch = *app.add_subcommand(
      "watch", "Print the status now, and at every change: after a save, and when it turns stale");
  auto* const json = watch.add_flag_callback(
      "--json", [&format] { format = "json"; }, "Print JSON as 'show --json' does, on one line");
  watch
      .add_option(
          "--format", format,
          "Format of a line: json, waybar (for a custom module of that bar), or a text with the placeholders "
          "{status}, {status_line}, {detail_line}, {presence}, {device}, {received_at}, {age} (when the line "
          "is printed) and {since} (when the status last changed); write a literal brace twice")
      ->capture_default_str()
      ->excludes(json);
  program::setExample(watch, "tarno-status watch --format '{status_line} {age}'");
  return watch;
}

}  // namespace

int main(int argc, char** argv) {
  program::reserveStandardOutput();

  CLI::App app{"Saves, shows and diagnoses the stored lock status of your Mac."};
  program::setExample(app, "echo '{\"status\": \"locked\"}' | tarno-status save && tarno-status show");
  app.require_subcommand(1);

  status::SaveOptions options;
  auto& save = addSave(app, options);

  bool asJSON = false;
  auto& show = *app.add_subcommand("show", "Show the last saved report as the widget would show it");
  show.add_flag(
      "--json", asJSON,
      "Print JSON: what the tile says (status, status_line, detail_line, presence, device, is_stale, "
      "age_seconds, received_at) and the record (snapshot), or null if nothing was saved yet");
  program::setExample(show, "tarno-status show --json --at 2026-11-16T15:45:00Z");

  std::optional<TarnoMacStatus> expected;
  auto& check = addCheck(app, expected);

  std::string format = "{status_line}: {detail_line}";
  auto& watch = addWatch(app, format);

  auto& doctor =
      *app.add_subcommand("doctor", "Show where the store is and what is in it, and diagnose problems");
  program::setExample(doctor, "tarno-status doctor");

  program::ClockOption clock{&save, &show, &check, &doctor};
  return program::run(app, argc, argv, [&] {
    clock.apply();
    if (save.parsed()) return status::save(options);
    if (show.parsed()) return status::show(asJSON);
    if (check.parsed()) return status::check(expected);
    if (watch.parsed()) return status::watch(format);
    return status::doctor();
  });
}
