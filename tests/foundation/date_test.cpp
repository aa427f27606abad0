#include <fcntl.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <ctime>
#include <random>
#include <sstream>

#include "tarno/foundation/date.hpp"
#include "tarno/foundation/file_descriptor.hpp"
#include "tarno/foundation/iso8601.hpp"

namespace tarno {
namespace {

using namespace std::chrono;

constexpr ISO8601DateFormatter wholeSeconds{withInternetDateTime};
constexpr ISO8601DateFormatter fractions{withInternetDateTime | withFractionalSeconds};
constexpr Date moment = sys_days{2026y / November / 16} + 15h + 41min + 35s;

TEST(ISO8601, ReadsOneFormOnly) {
  const std::tuple<const char*, std::optional<Date>, std::optional<Date>> rows[] = {
      {"2026-11-16T15:41:35Z", moment, {}},
      {"2026-11-15T16:11:35-23:30", moment, {}},
      {"2026-11-16T16:40:35+00:59", moment, {}},
      {"2026-11-16T15:41:35.250Z", {}, moment + 250ms},
      {"2026-11-16T15:41:35.5-00:00", {}, moment + 500ms},
      {"2026-11-16T15:41:35.1234569Z", {}, moment + 123456us},
      {"1969-12-31T23:59:59.9999999Z", {}, Date{-1us}},
      {"2024-02-29T00:00:00Z", Date{sys_days{2024y / February / 29}}, {}},
      {"0000-12-31T23:59:00-00:01", earliestDate, {}},
      {"9999-12-31T23:59:59.999999Z", {}, latestDate}};
  for (const auto& [text, whole, fractional] : rows) {
    EXPECT_EQ(wholeSeconds.date(text), whole) << text;
    EXPECT_EQ(fractions.date(text), fractional) << text;
    EXPECT_EQ(dateFromRFC3339(text), whole ? whole : fractional) << text;
  }
}

TEST(ISO8601, RefusesEverythingElse) {
  std::istringstream texts{
      "|2026-11-16|2026-11-16T15:41:35|2026-11-16T15:41:35.Z|2026-11-16T15:41:35,5Z| 2026-11-16T15:41:35Z|"
      "2026-11-16T15:41:35Z |2026-11-16t15:41:35Z|2026-11-16T15:41:35z|2026-11-16 15:41:35Z|"
      "2026-11-16T15:41:35+0200|2026-11-16T15:41:35+24:00|2026-11-16T15:41:35+02:60|2026-11-16T24:00:00Z|"
      "2026-11-16T15:60:00Z|2026-11-16T15:41:60Z|2026-02-29T00:00:00Z|2026-13-01T00:00:00Z|"
      "2026-1116T15:41:35Z|2026-11-16T1541:35Z|2026-11-16T15:4135Z|26-11-16T15:41:35Z|2026-11-16T1::41:35Z|"
      "0000-12-31T23:59:59Z|0001-01-01T00:00:00+00:01|9999-12-31T23:59:59-00:01"};
  for (std::string text; std::getline(texts, text, '|');)
    EXPECT_EQ(dateFromRFC3339(text), std::nullopt) << text;
}

TEST(ISO8601, AgreesWithTheReaderOfTheCLibrary) {
  std::mt19937 random{1};
  const auto upTo = [&](int most) { return std::uniform_int_distribution{0, most}(random); };
  for (int i = 0; i < 100'000; ++i) {
    std::array<char, 80> text;
    std::snprintf(text.data(), text.size(), "%04d-%02d-%02dT%02d:%02d:%02dZ", 1 + upTo(9998), upTo(13),
                  upTo(32), upTo(24), upTo(60), upTo(60));
    std::tm fields{};
    const bool isRead = strptime(text.data(), "%Y-%m-%dT%H:%M:%SZ", &fields) != nullptr;
    const auto day = fields.tm_mday, second = fields.tm_sec;
    const Date date{seconds{timegm(&fields)}};  // normalizes days and seconds that are out of range
    const bool isDate = isRead && fields.tm_mday == day && fields.tm_sec == second;
    EXPECT_EQ(dateFromRFC3339(text.data()), isDate ? std::optional{date} : std::nullopt) << text.data();
  }
}

TEST(ISO8601, WritesInUTCAndCutsTowardsThePast) {
  EXPECT_EQ(wholeSeconds.string(moment + 250ms), "2026-11-16T15:41:35Z");
  EXPECT_EQ(fractions.string(Date{-1us}), "1969-12-31T23:59:59.999Z");
  EXPECT_EQ(wholeSeconds.string(earliestDate - 1us), "+00000-12-31T23:59:59Z");
}

TEST(Date, ArithmeticIsExactAndNeverOverflows) {
  EXPECT_EQ(wholeSecondsBetween(moment, moment + 90900ms), 90);
  EXPECT_EQ(wholeSecondsBetween(moment, moment - 1900ms), -1);
  EXPECT_EQ(addingTimeInterval(moment, TimeInterval{-1.5}), moment - 1500ms);
  EXPECT_NEAR(static_cast<double>(wholeSecondsBetween(Date::min(), Date::max())), 18446744073709.6, 1);
}

TEST(Date, TheNewestOverrideCountsUntilItEnds) {
  const ClockOverride outer{moment};
  EXPECT_EQ((ClockOverride{moment + 1h}, now()), moment + 1h);
  EXPECT_EQ(now(), moment);
}

TEST(FileDescriptor, ClosesWhatItHeldWhenItIsGivenAnother) {
  FileDescriptor held{open("/", O_RDONLY | O_CLOEXEC)}, other{open("/", O_RDONLY | O_CLOEXEC)};
  const int first = held.get(), second = other.get();
  held = std::move(other);
  EXPECT_EQ(fcntl(first, F_GETFD), -1);
  EXPECT_EQ(fcntl(second, F_GETFD), FD_CLOEXEC);
}

}  // namespace
}  // namespace tarno
