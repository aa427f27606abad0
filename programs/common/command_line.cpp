#include "common/command_line.hpp"

#include <errno.h>  // program_invocation_short_name

#include <csignal>

#include "common/dates.hpp"
#include "common/output.hpp"

namespace program {
namespace {

const std::string dateForms =
    "a date such as 2026-11-16T15:41:35Z or 2026-11-16T16:41:35.250+01:00 (RFC 3339)";

}  // namespace

int run(CLI::App& app, int argc, char** argv, const std::function<int()>& command) {
  // A write beyond the limit on file sizes then fails like any other, and what was begun is cleaned up.
  std::signal(SIGXFSZ, SIG_IGN);
  app.set_version_flag("--version", std::string{program_invocation_short_name} + " " + TARNO_VERSION);
  try {
    try {
      app.parse(argc, argv);
    } catch (const CLI::CallForVersion& version) {
      writeOutput(std::string{version.what()} + "\n");
      return EX_OK;
    } catch (const CLI::Success&) {
      writeOutput(app.help());
      return EX_OK;
    } catch (const CLI::ParseError& error) {
      throw Failure{EX_USAGE, std::string{error.what()} + " (see --help)"};
    }
    return command();
  } catch (...) {
    const auto failure = currentFailure();
    complain(failure.what());
    return failure.exitCode();
  }
}

CLI::Option* addDateOption(CLI::App& app, const std::string& name, std::optional<foundation::Date>& date,
                           const std::string& description) {
  const auto read = [&date, name](const std::string& text) {
    date = parseDate(text);
    if (!date) throw CLI::ValidationError{name + " takes " + dateForms + ", not '" + text + "'"};
  };
  return app.add_option_function<std::string>(name, read, description + "; " + dateForms)->type_name("DATE");
}

ClockOption::ClockOption(std::initializer_list<CLI::App*> commands) {
  for (auto* const command : commands)
    addDateOption(*command, "--at", at_, "Use this date instead of the current time");
}

void ClockOption::apply() {
  if (at_) override_.emplace(*at_);
}

void setExample(CLI::App& app, const std::string& example) { app.footer("Example:\n  " + example); }

}  // namespace program
