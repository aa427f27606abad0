#include "common/command_line.hpp"

#include <errno.h>  // program_invocation_short_name

#include <cstdio>

#include "common/dates.hpp"
#include "common/failure.hpp"
#include "common/output.hpp"

namespace program {

void complain(const std::string& line) {
  const auto whole = std::string{program_invocation_short_name} + ": " + printable(line) + "\n";
  std::fwrite(whole.data(), 1, whole.size(), stderr);
}

int run(CLI::App& app, int argc, char** argv, const std::function<int()>& command) {
  try {
    try {
      app.parse(argc, argv);
    } catch (const CLI::Success&) {
      writeOutput(app.help());
      return EX_OK;
    } catch (const CLI::ParseError& error) {
      throw Failure{EX_USAGE, std::string{error.what()} + " (see --help)"};
    }
    return command();
  } catch (const Failure& failure) {
    complain(failure.what());
    return failure.exitCode();
  } catch (const std::exception& error) {
    complain(error.what());
    return EX_SOFTWARE;
  }
}

CLI::Option* addDateOption(CLI::App& app, const std::string& name, std::optional<foundation::Date>& date,
                           const std::string& description) {
  const auto read = [&date](const std::string& text) {
    date = parseDate(text);
    if (!date) throw CLI::ValidationError{"'" + text + "' is not a date such as 2026-11-16T15:41:35Z"};
  };
  return app.add_option_function<std::string>(name, read, description)->type_name("DATE");
}

ClockOption::ClockOption(CLI::App& app) {
  addDateOption(app, "--at", at_, "Take this, not the clock, for the current time");
}

void ClockOption::apply() {
  if (at_) override_.emplace(*at_);
}

void setExample(CLI::App& app, const std::string& example) { app.footer("Example:\n  " + example); }

}  // namespace program
