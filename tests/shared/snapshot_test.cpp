#include <gtest/gtest.h>

#include <cmath>

#include "shared/coding/json.hpp"
#include "shared/model/status_snapshot.hpp"

namespace {

using foundation::DecodingError;
using Snapshot = TarnoMacStatusSnapshot;
using Kind = DecodingError::Kind;
using namespace std::chrono;

Snapshot decoded(std::string_view json) { return TarnoJSON::decoder().decode<Snapshot>(json); }
std::string encoded(const Snapshot& snapshot) { return TarnoJSON::encoder().encode(snapshot); }

constexpr foundation::Date moment = sys_days{2026y / November / 16} + 15h + 41min + 35s;

/// Every field, in order.
const std::string fullJSON =
    R"({"schema":"tarno.remote.v1","app":"Tarno","event":"locked","device_id":"m1",)"
    R"("device_name":"Kivo's Mac","seen_at":"2026-11-16T15:41:35Z","status":"locking","reason":"r",)"
    R"("source":"s","confidence":-7,"face_present":false,"companion_present":true,)"
    R"("input_idle_seconds":0.25,"stale":true,"age_seconds":4611686018427387904,"message":"m"})";

TEST(MacStatus, EveryCaseIsItsRawValue) {
  const std::tuple<TarnoMacStatus, std::string, const char*> cases[] = {
      {TarnoMacStatus::locked, "locked", "Locked"},
      {TarnoMacStatus::unlocked, "unlocked", "Unlocked"},
      {TarnoMacStatus::locking, "locking", "Locking"},
      {TarnoMacStatus::unknown, "unknown", "Unknown"}};
  for (std::size_t i = 0; i < TarnoMacStatus::allCases.size(); ++i) {
    const auto& [status, raw, name] = cases[i];
    EXPECT_EQ(TarnoMacStatus::allCases[i], status);
    EXPECT_EQ(status.rawValue(), raw);
    EXPECT_EQ(status.displayName(), name);
    EXPECT_EQ(TarnoMacStatus::fromRawValue(raw), status);
    EXPECT_EQ(TarnoJSON::encoder().encode(status), '"' + raw + '"');
    EXPECT_EQ(TarnoJSON::decoder().decode<TarnoMacStatus>('"' + raw + '"'), status);
    EXPECT_EQ(std::hash<TarnoMacStatus>{}(status), std::hash<std::string>{}(raw));
  }
  for (const char* const text : {"Locked", "LOCKED", " locked", "locked ", "lock", ""})
    EXPECT_EQ(TarnoMacStatus::fromRawValue(text), std::nullopt) << text;
}

TEST(Snapshot, EveryFieldSurvives) {
  const Snapshot full{.schema = "tarno.remote.v1",
                      .app = "Tarno",
                      .event = "locked",
                      .deviceID = "m1",
                      .deviceName = "Kivo's Mac",
                      .seenAt = moment,
                      .status = TarnoMacStatus::locking,
                      .reason = "r",
                      .source = "s",
                      .confidence = -7,
                      .facePresent = false,
                      .companionPresent = true,
                      .inputIdleSeconds = 0.25,
                      .stale = true,
                      .ageSeconds = std::int64_t{1} << 62,
                      .message = "m"};
  EXPECT_EQ(encoded(full), fullJSON);
  EXPECT_EQ(decoded(fullJSON), full);
  std::string keys;
  for (const auto key : Snapshot::CodingKeys::all) keys += std::string{key} + ' ';
  EXPECT_EQ(keys,
            "schema app event device_id device_name seen_at status reason source confidence face_present "
            "companion_present input_idle_seconds stale age_seconds message ");
  EXPECT_EQ(encoded({}), "{}");
  EXPECT_EQ(encoded({.status = TarnoMacStatus::unknown}), R"({"status":"unknown"})");
}

TEST(Snapshot, AbsentAndNullAndUnknownKeysAreAlike) {
  EXPECT_EQ(decoded("{}"), Snapshot{});
  EXPECT_EQ(
      decoded(R"({"schema":null,"app":null,"event":null,"device_id":null,"device_name":null,"seen_at":null,
      "status":null,"reason":null,"source":null,"confidence":null,"face_present":null,"companion_present":null,
      "input_idle_seconds":null,"stale":null,"age_seconds":null,"message":null})"),
      Snapshot{});
  EXPECT_EQ(decoded(R"({"deviceName":1,"seenAt":"x","extra":{"a":[1]},"status":"unknown"})"),
            Snapshot{.status = TarnoMacStatus::unknown});
  EXPECT_EQ(decoded(R"({"schema":"other","confidence":3.0,"age_seconds":3e0,"input_idle_seconds":7})"),
            (Snapshot{.schema = "other", .confidence = 3, .inputIdleSeconds = 7.0, .ageSeconds = 3}));
}

TEST(Snapshot, OneBadFieldRefusesTheRecord) {
  const std::tuple<const char*, Kind, foundation::CodingPath> cases[] = {
      {"[]", Kind::typeMismatch, {}},
      {"null", Kind::typeMismatch, {}},
      {"{", Kind::dataCorrupted, {}},
      {R"({"app":1})", Kind::typeMismatch, {"app"}},
      {R"({"status":"Locked"})", Kind::dataCorrupted, {"status"}},
      {R"({"status":0})", Kind::typeMismatch, {"status"}},
      {R"({"confidence":2.5})", Kind::dataCorrupted, {"confidence"}},
      {R"({"confidence":"3"})", Kind::typeMismatch, {"confidence"}},
      {R"({"confidence":true})", Kind::typeMismatch, {"confidence"}},
      {R"({"age_seconds":9223372036854775808})", Kind::dataCorrupted, {"age_seconds"}},
      {R"({"face_present":1})", Kind::typeMismatch, {"face_present"}},
      {R"({"stale":"true"})", Kind::typeMismatch, {"stale"}},
      {R"({"input_idle_seconds":"1"})", Kind::typeMismatch, {"input_idle_seconds"}},
      {R"({"seen_at":1763307695})", Kind::typeMismatch, {"seen_at"}},
      {R"({"seen_at":"2026-11-16"})", Kind::dataCorrupted, {"seen_at"}}};
  for (const auto& [json, kind, path] : cases) {
    try {
      decoded(json);
      ADD_FAILURE() << json;
    } catch (const DecodingError& error) {
      EXPECT_EQ(error.kind, kind) << json;
      EXPECT_EQ(error.codingPath, path) << json;
      if (std::string_view{json}.ends_with("11-16\"}"))
        EXPECT_EQ(error.debugDescription, "Invalid ISO8601 date");
    }
  }
}

TEST(Snapshot, DatesLoseTheirFractionWhenWritten) {
  const auto read = decoded(R"({"seen_at":"2026-11-16T17:41:35.500+02:00"})");
  EXPECT_EQ(read.seenAt, moment + 500ms);
  EXPECT_EQ(decoded(encoded(read)).seenAt, moment);
  EXPECT_NE(decoded(encoded(read)), read);
}

TEST(Snapshot, RefusesToEncodeWhatJSONCannotHold) {
  const double infinity = HUGE_VAL;
  const std::pair<Snapshot, const char*> cases[] = {
      {{.inputIdleSeconds = std::nan("")}, "input_idle_seconds"},
      {{.inputIdleSeconds = infinity}, "input_idle_seconds"},
      {{.inputIdleSeconds = -infinity}, "input_idle_seconds"},
      {{.message = "\xff"}, "message"}};
  for (auto [snapshot, key] : cases) {
    snapshot.app = "a";
    try {
      encoded(snapshot);
      ADD_FAILURE() << key;
    } catch (const foundation::EncodingError& error) {
      EXPECT_EQ(error.codingPath, foundation::CodingPath{key});
    }
  }
}

TEST(Snapshot, DatesThatHaveNoWrittenFormBecomeTheNearestThatHas) {
  const foundation::Date first = sys_days{1y / January / 1}, last = sys_days{10000y / January / 1} - 1s;
  for (const auto& [date, written] : {std::pair{first, first},
                                      {first - 1us, first},
                                      {last, last},
                                      {last + 1s, last},
                                      {foundation::Date::max(), last}})
    EXPECT_EQ(decoded(encoded({.seenAt = date})).seenAt, written) << date.time_since_epoch().count();
}

TEST(Snapshot, EqualsByMeaning) {
  const auto named = [](const char* name) { return Snapshot{.deviceName = name}; };
  EXPECT_EQ(named("Caf\u00e9"), named("Cafe\u0301"));
  EXPECT_EQ(named("\uac00"), named("\u1100\u1161"));
  EXPECT_EQ(named("q\u0307\u0323"), named("q\u0323\u0307"));
  EXPECT_NE(named("Cafe"), named("Caf\u00e9"));
  EXPECT_NE(named("\ufb01"), named("fi"));  // a compatibility form, not a canonical one
  EXPECT_NE(named("a\xff"), named("e\u0301\xff"));
  EXPECT_NE(named("e\u0301\u0300"), named("e\u0300\u0301"));  // marks of one class keep their order
  EXPECT_EQ(named("\u1f82\u0323"), named("\u03b1\u0323\u0313\u0300\u0345"));
  EXPECT_NE(Snapshot{.inputIdleSeconds = std::nan("")}, Snapshot{.inputIdleSeconds = std::nan("")});
  EXPECT_NE(Snapshot{.message = "a"}, Snapshot{.message = "b"});
  EXPECT_NE(Snapshot{.confidence = 1}, Snapshot{.confidence = 2});
  EXPECT_NE(Snapshot{.seenAt = moment}, Snapshot{.seenAt = moment + 1us});
  EXPECT_NE(Snapshot{.deviceName = ""}, Snapshot{});
  for (const auto key : Snapshot::CodingKeys::all) {
    auto without = fullJSON;  // of a key that stands twice, the last counts
    without.insert(without.size() - 1, ",\"" + std::string{key} + "\":null");
    EXPECT_NE(decoded(without), decoded(fullJSON)) << key;
  }
}

TEST(Snapshot, ComparesLongRunsOfMarks) {
  std::string mixed;
  std::string sorted;
  for (int i = 0; i < 200'000; ++i) mixed += "\u0301\u0323";
  for (int i = 0; i < 200'000; ++i) sorted += "\u0323";
  for (int i = 0; i < 200'000; ++i) sorted += "\u0301";
  EXPECT_EQ(Snapshot{.message = mixed}, Snapshot{.message = sorted});  // takes minutes in quadratic time
}

TEST(Snapshot, DisplayLines) {
  const auto locked = TarnoMacStatus::locked;
  const std::pair<Snapshot, const char*> cases[] = {
      {{}, "unknown, Unknown, Waiting for Tarno status."},
      {{.status = TarnoMacStatus::unknown}, "unknown, Unknown, Waiting for Tarno status."},
      {{.status = locked, .reason = "r", .message = "m"}, "locked, Locked, r"},
      {{.status = locked, .reason = "", .stale = false, .message = "m"}, "locked, Locked, m"},
      {{.status = locked, .reason = "", .message = ""}, "locked, Locked, Waiting for Tarno status."},
      {{.reason = " ", .message = "m"}, "unknown, Unknown,  "},
      {{.status = locked, .reason = "r", .stale = true, .message = "m"},
       "unknown, Status stale, Mac status is stale. Refresh Tarno before trusting it."},
      {{.stale = true, .ageSeconds = 3599},
       "unknown, Status stale, Mac status is 59m old. Refresh Tarno before trusting it."}};
  for (const auto& [snapshot, lines] : cases) {
    const std::string resolved{snapshot.resolvedStatus().rawValue()};
    EXPECT_EQ(resolved + ", " + snapshot.statusLine() + ", " + snapshot.detailLine(), lines);
  }
}

}  // namespace
