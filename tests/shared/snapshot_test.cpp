#include <gtest/gtest.h>
#include <utf8proc.h>

#include <array>
#include <cctype>
#include <cstdio>
#include <memory>
#include <sstream>

#include "tarno/shared/coding/json.hpp"
#include "tarno/shared/freshness/status_freshness.hpp"
#include "tarno/shared/model/status_snapshot.hpp"

namespace {

using tarno::Date;
using Snapshot = TarnoMacStatusSnapshot;
using namespace std::chrono;

Snapshot decoded(std::string_view json) { return TarnoJSON::decoder().decode<Snapshot>(json); }
std::string encoded(const Snapshot& snapshot) { return TarnoJSON::encoder().encode(snapshot); }

constexpr Date moment = sys_days{2026y / November / 16} + 15h + 41min + 35s;

TEST(MacStatus, IsReadByItsRawValueOnly) {
  std::string words;
  for (const auto status : TarnoMacStatus::allCases) {
    words.append(status.rawValue()).append(" ").append(status.displayName()).append("; ");
    EXPECT_EQ(TarnoMacStatus::fromRawValue(status.rawValue()), status);
  }
  EXPECT_EQ(words, "locked Locked; unlocked Unlocked; locking Locking; unknown Unknown; ");
  for (const auto* const wrong : {"", "Locked", "LOCKED", " locked", "locked ", "lockedx", "lock", "stale"})
    EXPECT_EQ(TarnoMacStatus::fromRawValue(wrong), std::nullopt) << wrong;
}

TEST(Snapshot, EveryFieldSurvivesAndCounts) {
  const std::string members =
      R"("schema":"tarno.remote.v1","app":"Tarno","event":"locked","device_id":"m1","device_name":"Kivo's Mac",)"
      R"("seen_at":"2026-11-16T15:41:35Z","status":"locking","reason":"r","source":"s","confidence":-7,)"
      R"("face_present":false,"companion_present":true,"input_idle_seconds":0.25,"stale":true,)"
      R"("age_seconds":4611686018427387904,"message":"m\"\n\u0000é")";
  Snapshot full{"tarno.remote.v1",       "Tarno", "locked", "m1", "Kivo's Mac", moment,
                TarnoMacStatus::locking, "r",     "s"};
  full.confidence = -7, full.facePresent = false, full.companionPresent = true, full.inputIdleSeconds = 0.25;
  full.stale = true, full.ageSeconds = std::int64_t{1} << 62, full.message = std::string{"m\"\n\0é", 6};
  EXPECT_EQ(encoded(full), "{" + members + "}");
  EXPECT_EQ(decoded("{" + members + "}"), full);
  for (const auto& name : Snapshot::CodingKeys::all) {
    const auto key = '"' + std::string{name} + "\":";
    // Of repeated keys, the last one counts.
    const auto without = decoded(("{" + members + ",").append(key).append("null}"));
    EXPECT_NE(without, full) << key;
    EXPECT_EQ(encoded(without).find(key), std::string::npos) << key;
  }
  EXPECT_EQ(decoded(R"({"deviceName":1,"extra":{"a":[1]}})"), Snapshot{});
  EXPECT_EQ(encoded(decoded(R"({"confidence":3.0,"age_seconds":3e0,"input_idle_seconds":7})")),
            R"({"confidence":3,"input_idle_seconds":7.0,"age_seconds":3})");
}

TEST(Snapshot, DatesAreWrittenInWholeSecondsOfTheYearsThatReadBack) {
  EXPECT_EQ(decoded(R"({"seen_at":"2026-11-16T17:41:35.500+02:00"})").seenAt, moment + 500ms);
  for (const auto& [date, written] : {std::pair{moment + 500ms, "2026-11-16T15:41:35Z"},
                                      {tarno::earliestDate - 1us, "0001-01-01T00:00:00Z"},
                                      {tarno::latestDate + 1us, "9999-12-31T23:59:59Z"},
                                      {Date::max(), "9999-12-31T23:59:59Z"}})
    EXPECT_EQ(encoded({.seenAt = date}), "{\"seen_at\":\"" + std::string{written} + "\"}");
}

TEST(Snapshot, TextsAreEqualByMeaning) {
  EXPECT_NE(Snapshot{.deviceName = "Cafe"}, Snapshot{.deviceName = "Caf\u00e9"});
  EXPECT_NE(Snapshot{.deviceName = "a\xff"}, Snapshot{.deviceName = "e\u0301\xff"});
  EXPECT_NE(Snapshot{.deviceName = ""}, Snapshot{});
  EXPECT_NE(Snapshot{.seenAt = moment}, Snapshot{.seenAt = moment + 1us});
  std::string mixed, below, above;  // equal texts; a comparison in quadratic time takes minutes
  for (int i = 0; i < 100'000; ++i) mixed += "\u0301\u0323\u0300", below += "\u0323", above += "\u0301\u0300";
  EXPECT_EQ(Snapshot{.message = mixed}, Snapshot{.message = below + above});
}

/// Returns the UTF-8 form of code points, which are hexadecimal numbers with spaces between them.
std::string utf8(const std::string& codePoints) {
  std::string text;
  std::istringstream words{codePoints};
  for (utf8proc_int32_t codePoint = 0; words >> std::hex >> codePoint;) {
    std::array<utf8proc_uint8_t, 4> bytes;
    const auto length = utf8proc_encode_char(codePoint, bytes.data());
    text.append(bytes.begin(), bytes.begin() + length);
  }
  return text;
}

TEST(Snapshot, TextsAreEqualAsTheRowsOfTheUnicodeStandardSay) {
  // From Debian's package unicode-data, which compresses the file in some releases.
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> rows{
      popen("bzcat -f /usr/share/unicode/NormalizationTest.txt*", "r"), pclose};
  ASSERT_TRUE(rows);
  int count = 0;
  for (std::array<char, 4096> line; std::fgets(line.data(), line.size(), rows.get());) {
    if (std::isxdigit(line[0]) == 0) continue;
    std::istringstream cells{line.data()};
    std::array<Snapshot, 5> texts;  // a text, and its normal forms C, D, KC and KD
    std::string cell;
    for (auto& text : texts) std::getline(cells, cell, ';'), text.deviceName = utf8(cell);
    const auto& [text, c, d, kc, kd] = texts;
    EXPECT_TRUE(text == c && c == d && kc == kd && (d == kd) == (*d.deviceName == *kd.deviceName))
        << line.data();
    ++count;
  }
  EXPECT_GT(count, 18'000);
}

TEST(Snapshot, DisplayLines) {
  const auto locked = TarnoMacStatus::locked;
  const std::pair<Snapshot, const char*> rows[] = {
      {{}, "unknown, Unknown, Waiting for Tarno status."},
      {{.status = locked, .reason = "r", .message = "m"}, "locked, Locked, r"},
      {{.status = locked, .reason = "", .stale = false, .message = "m"}, "locked, Locked, m"},
      {{.status = locked, .reason = "", .message = ""}, "locked, Locked, Waiting for Tarno status."},
      {{.status = locked, .reason = "r", .stale = true, .ageSeconds = 3599, .message = "m"},
       "unknown, Status stale, Mac status is 59m old. Refresh Tarno before trusting it."}};
  for (const auto& [snapshot, lines] : rows) {
    SCOPED_TRACE(lines);
    const std::string resolved{snapshot.resolvedStatus().rawValue()};
    EXPECT_EQ(resolved + ", " + snapshot.statusLine() + ", " + snapshot.detailLine(), lines);
  }
}

TEST(Freshness, AgeMakesAReportStaleAndNothingMakesItFresh) {
  const auto locked = TarnoMacStatus::locked;
  const std::tuple<const char*, Snapshot, std::optional<Date>, Snapshot> rows[] = {
      {"received no one knows when", {.ageSeconds = 999}, {}, {.ageSeconds = 999}},
      {"at the limit", {.ageSeconds = 999}, moment - 150999ms, {.ageSeconds = 150}},
      {"beyond it", {.stale = false}, moment - 151s, {.stale = true, .ageSeconds = 151}},
      {"stale when it came", {.stale = true}, moment - 5s, {.stale = true, .ageSeconds = 5}},
      {"in the future", {.status = locked}, moment + 1h, {.status = locked, .ageSeconds = 0}},
      {"at the end of time", {}, Date::max(), {.ageSeconds = 0}}};
  for (const auto& [name, before, receivedAt, after] : rows)
    EXPECT_EQ(before.withLocalFreshness(receivedAt, moment, TarnoStatusFreshness::localStaleAfter), after)
        << name;
  EXPECT_GT(TarnoStatusFreshness::ageSeconds(Date::min(), Date::max()), 0);
  EXPECT_EQ(TarnoStatusFreshness::staleFrom(moment), moment + 151s);
}

TEST(Freshness, StaleDetailNamesTheAge) {
  const std::pair<std::optional<std::int64_t>, const char*> rows[] = {
      {{}, "stale"},     {59, "59s old"},  {60, "1m old"},     {119, "1m old"},
      {3599, "59m old"}, {3600, "1h old"}, {86399, "23h old"}, {-5, "-5s old"}};
  for (const auto& [age, words] : rows)
    EXPECT_EQ(TarnoStatusFreshness::staleDetail(age),
              "Mac status is " + std::string{words} + ". Refresh Tarno before trusting it.");
}

}  // namespace
