#include "tarno/foundation/iso8601.hpp"

#include <cstdio>

namespace tarno {
namespace {

using namespace std::chrono;

/// Reads a text from left to right. After the first step that fails, every later step fails too.
class Scanner {
 public:
  explicit Scanner(std::string_view text) : rest_(text) {}

  bool literal(char expected) {
    if (rest_.empty() || rest_.front() != expected) return false;
    rest_.remove_prefix(1);
    return true;
  }

  std::optional<int> digits(std::size_t count) {
    if (rest_.size() < count) return std::nullopt;
    int value = 0;
    for (const char c : rest_.substr(0, count)) {
      if (c < '0' || c > '9') return std::nullopt;
      value = value * 10 + (c - '0');
    }
    rest_.remove_prefix(count);
    return value;
  }

  /// Reads one or more digits as a decimal fraction of a second.
  std::optional<microseconds> fraction() {
    microseconds value{0};
    microseconds unit{100'000};
    const auto before = rest_.size();
    while (const auto digit = digits(1)) {
      value += *digit * unit;
      unit /= 10;
    }
    if (rest_.size() == before) return std::nullopt;
    return value;
  }

  bool atEnd() const { return rest_.empty(); }

 private:
  std::string_view rest_;
};

std::optional<sys_days> readDay(Scanner& scanner) {
  const auto year = scanner.digits(4);
  if (!year || !scanner.literal('-')) return std::nullopt;
  const auto month = scanner.digits(2);
  if (!month || !scanner.literal('-')) return std::nullopt;
  const auto day = scanner.digits(2);
  if (!day) return std::nullopt;
  const year_month_day date{std::chrono::year{*year}, std::chrono::month{static_cast<unsigned>(*month)},
                            std::chrono::day{static_cast<unsigned>(*day)}};
  if (!date.ok()) return std::nullopt;
  return sys_days{date};
}

std::optional<minutes> readHoursAndMinutes(Scanner& scanner) {
  const auto hour = scanner.digits(2);
  if (!hour || *hour > 23 || !scanner.literal(':')) return std::nullopt;
  const auto minute = scanner.digits(2);
  if (!minute || *minute > 59) return std::nullopt;
  return hours{*hour} + minutes{*minute};
}

/// Reads "Z" or an offset such as "+02:00". Returns how far local time is ahead of UTC.
std::optional<minutes> readTimeZone(Scanner& scanner) {
  if (scanner.literal('Z')) return minutes{0};
  const bool ahead = scanner.literal('+');
  if (!ahead && !scanner.literal('-')) return std::nullopt;
  const auto offset = readHoursAndMinutes(scanner);
  if (!offset) return std::nullopt;
  return ahead ? *offset : -*offset;
}

// The process has two shared formatters, each created on first use. They are immutable, so that any number of
// threads may use them at once.

/// Returns the formatter that requires a fraction of a second.
const ISO8601DateFormatter& tarno() {
  static const ISO8601DateFormatter formatter{withInternetDateTime | withFractionalSeconds};
  return formatter;
}

/// Returns the formatter that allows no fraction of a second.
const ISO8601DateFormatter& tarnoNoFractions() {
  static const ISO8601DateFormatter formatter{withInternetDateTime};
  return formatter;
}

}  // namespace

std::optional<Date> ISO8601DateFormatter::date(std::string_view text) const {
  Scanner scanner{text};
  const auto day = readDay(scanner);
  if (!day || !scanner.literal('T')) return std::nullopt;
  const auto time = readHoursAndMinutes(scanner);
  if (!time || !scanner.literal(':')) return std::nullopt;
  const auto second = scanner.digits(2);
  if (!second || *second > 59) return std::nullopt;
  microseconds fraction{0};
  if ((options_ & withFractionalSeconds) != 0) {
    if (!scanner.literal('.')) return std::nullopt;
    const auto read = scanner.fraction();
    if (!read) return std::nullopt;
    fraction = *read;
  }
  const auto offset = readTimeZone(scanner);
  if (!offset || !scanner.atEnd()) return std::nullopt;

  const Date moment = *day + *time + seconds{*second} + fraction - *offset;
  if (moment < earliestDate || moment > latestDate) return std::nullopt;
  return moment;
}

std::string ISO8601DateFormatter::string(Date date) const {
  const auto day = floor<days>(date);
  const year_month_day calendar{day};
  const hh_mm_ss time{floor<milliseconds>(date - day)};
  // The calendar type has no years beyond ±32767. The year of a Date outside them wraps around.
  const int year = static_cast<int>(calendar.year());

  char text[64];
  const bool isExpanded = date < earliestDate || date > latestDate;
  std::snprintf(text, sizeof text,
                isExpanded ? "%+06d-%02u-%02uT%02d:%02d:%02d" : "%04d-%02u-%02uT%02d:%02d:%02d", year,
                static_cast<unsigned>(calendar.month()), static_cast<unsigned>(calendar.day()),
                static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
                static_cast<int>(time.seconds().count()));
  std::string result{text};
  if ((options_ & withFractionalSeconds) != 0) {
    std::snprintf(text, sizeof text, ".%03d", static_cast<int>(time.subseconds().count()));
    result += text;
  }
  return result + "Z";
}

std::optional<Date> dateFromRFC3339(std::string_view text) {
  if (const auto date = tarno().date(text)) return date;
  return tarnoNoFractions().date(text);
}

}  // namespace tarno
