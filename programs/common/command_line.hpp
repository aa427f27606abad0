#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <optional>
#include <string>

#include "foundation/date.hpp"

namespace program {

/// Parses the arguments into `app`, then calls `command`; the program's main ends with what this returns.
/// Help is printed for --help and the code is 0; a wrong command line is one line on standard error and
/// EX_USAGE. A Failure of `command` is one line on standard error and its code, any other exception one line
/// and EX_SOFTWARE.
int run(CLI::App& app, int argc, char** argv, const std::function<int()>& command);

/// One line on standard error: the program's name, then `line`.
void complain(const std::string& line);

/// An option that takes an RFC 3339 date-time, with or without a fraction of a second.
CLI::Option* addDateOption(CLI::App& app, const std::string& name, std::optional<foundation::Date>& date,
                           const std::string& description);

/// --at DATE, for commands that read the clock: while the command runs, the clock stands still there.
class ClockOption {
 public:
  /// Adds the option to `app`; this object outlives the command.
  explicit ClockOption(CLI::App& app);

  /// Stops the clock when the option was given. Call once, after the arguments were parsed.
  void apply();

 private:
  std::optional<foundation::Date> at_;
  std::optional<foundation::ClockOverride> override_;
};

/// Sets an example line that --help ends with.
void setExample(CLI::App& app, const std::string& example);

}  // namespace program
