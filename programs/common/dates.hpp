#pragma once

#include <CLI/CLI.hpp>
#include <initializer_list>
#include <optional>
#include <string>

#include "tarno/foundation/date.hpp"

namespace program {

/// An option that takes an RFC 3339 date-time, with or without a fraction of a second.
CLI::Option* addDateOption(CLI::App& app, const std::string& name, std::optional<tarno::Date>& date,
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
  std::optional<tarno::Date> at_;
  std::optional<tarno::ClockOverride> override_;
};

/// RFC 3339 in UTC, with milliseconds unless they are zero; the nearest date that has this form.
std::string dateText(tarno::Date date);

}  // namespace program
