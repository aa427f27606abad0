#pragma once

#include <CLI/CLI.hpp>
#include <initializer_list>
#include <optional>
#include <string>

#include "tarno/foundation/date.hpp"

namespace program {

/// Adds an option that takes an RFC 3339 date-time, with or without a fraction of a second.
CLI::Option* addDateOption(CLI::App& app, const std::string& name, std::optional<tarno::Date>& date,
                           const std::string& description);

/// The option --at DATE, for commands that read the clock: it freezes the clock at that date.
class ClockOption {
 public:
  /// Adds the option to each of `commands`. This object must outlive them.
  explicit ClockOption(std::initializer_list<CLI::App*> commands);
  explicit ClockOption(CLI::App& command) : ClockOption({&command}) {}

  /// Freezes the clock if the option was given. Call it once, after parsing.
  void apply();

 private:
  std::optional<tarno::Date> at_;
  std::optional<tarno::ClockOverride> override_;
};

/// Returns RFC 3339 in UTC, with milliseconds unless they are zero; a date outside the years 0001 to 9999
/// becomes the nearest one inside.
std::string dateText(tarno::Date date);

}  // namespace program
