#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <initializer_list>
#include <optional>
#include <string>

#include "common/failure.hpp"
#include "foundation/date.hpp"

namespace program {

/// Parses the arguments into `app`, then calls `command`; the program's main ends with what this returns.
/// Help is printed for --help, the program's name and version for --version, and the code is 0; a wrong
/// command line is one line on standard error and EX_USAGE. An exception of `command` is one line on standard
/// error and the code that currentFailure() gives it.
int run(CLI::App& app, int argc, char** argv, const std::function<int()>& command);

/// An option that takes an RFC 3339 date-time, with or without a fraction of a second.
CLI::Option* addDateOption(CLI::App& app, const std::string& name, std::optional<foundation::Date>& date,
                           const std::string& description);

/// --at DATE, for commands that read the clock: while the command runs, the clock stands still there.
class ClockOption {
 public:
  /// Adds the option to each of `commands`; this object outlives them.
  explicit ClockOption(std::initializer_list<CLI::App*> commands);
  explicit ClockOption(CLI::App& command) : ClockOption({&command}) {}

  /// Stops the clock when the option was given. Call once, after the arguments were parsed.
  void apply();

 private:
  std::optional<foundation::Date> at_;
  std::optional<foundation::ClockOverride> override_;
};

/// Sets an example line that --help ends with.
void setExample(CLI::App& app, const std::string& example);

}  // namespace program
