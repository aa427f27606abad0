#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "tarno/foundation/date.hpp"

namespace tarno {

/// Which parts of a date-time a formatter reads and writes, as a bit mask.
enum ISO8601FormatOptions : unsigned {
  withYear = 1,
  withMonth = 2,
  withDay = 16,
  withTime = 32,
  withTimeZone = 64,
  withDashSeparatorInDate = 256,
  withColonSeparatorInTime = 512,
  withColonSeparatorInTimeZone = 1024,
  withFractionalSeconds = 2048,
  /// RFC 3339, section 5.6: full date, T, time to the second, Z or an offset.
  withInternetDateTime = withYear | withMonth | withDay | withTime | withTimeZone | withDashSeparatorInDate |
                         withColonSeparatorInTime | withColonSeparatorInTimeZone,
};

/// Reads and writes RFC 3339 date-times. Immutable, so any number of threads may share one.
///
/// Reading is strict: upper-case T and Z, two digits where the standard says two, a calendar-valid day, hours
/// 00 to 23, seconds 00 to 59 (a leap second has no moment of its own on this time scale), an offset from
/// -23:59 to +23:59, and nothing before or after. The moment must lie between earliestDate and latestDate.
///
/// Fractions of a second are always rounded towards the past, before 1970 too. Reading keeps microseconds and
/// drops further digits; writing without a fraction drops all of them.
class ISO8601DateFormatter {
 public:
  /// `options` is withInternetDateTime, alone or with withFractionalSeconds. Other options are not supported.
  constexpr explicit ISO8601DateFormatter(unsigned options) : options_(options) {}

  /// Returns the date that `text` names, or nothing. With withFractionalSeconds, at least one digit of a
  /// fraction is required; without it, none is allowed.
  std::optional<Date> date(std::string_view text) const;

  /// Returns `date` in UTC with the designator Z, with milliseconds if withFractionalSeconds is set. A date
  /// before earliestDate or after latestDate is written in the expanded form of ISO 8601 (a sign and at least
  /// five digits). That form is for people: date() does not read it.
  std::string string(Date date) const;

 private:
  unsigned options_;
};

/// Returns the date that an RFC 3339 date-time names, with or without a fraction of a second; nothing for any
/// other text. Any thread.
std::optional<Date> dateFromRFC3339(std::string_view text);

}  // namespace tarno
