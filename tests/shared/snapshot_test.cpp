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

TEST(MacStatus, EveryCaseIsItsRawValue) {
  const std::pair<TarnoMacStatus, const char*> cases[] = {{TarnoMacStatus::locked, "Locked"},
                                                          {TarnoMacStatus::unlocked, "Unlocked"},
                                                          {TarnoMacStatus::locking, "Locking"},
                                                          {TarnoMacStatus::unknown, "Unknown"}};
  ASSERT_EQ(TarnoMacStatus::allCases.size(), 4u);
  for (std::size_t i = 0; i < 4; ++i) {
    const auto [status, name] = cases[i];
    EXPECT_EQ(TarnoMacStatus::allCases[i], status);
    EXPECT_EQ(status.displayName(), name);
    EXPECT_EQ(TarnoMacStatus::fromRawValue(status.rawValue()), status);
    EXPECT_EQ(TarnoJSON::encoder().encode(status), '"' + std::string{status.rawValue()} + '"');
    EXPECT_EQ(TarnoJSON::decoder().decode<TarnoMacStatus>('"' + std::string{status.rawValue()} + '"'),
              status);
    EXPECT_EQ(std::hash<TarnoMacStatus>{}(status), std::hash<std::string_view>{}(status.rawValue()));
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
  EXPECT_EQ(encoded(full),
            R"({"schema":"tarno.remote.v1","app":"Tarno","event":"locked","device_id":"m1",)"
            R"("device_name":"Kivo's Mac","seen_at":"2026-11-16T15:41:35Z","status":"locking","reason":"r",)"
            R"("source":"s","confidence":-7,"face_present":false,"companion_present":true,)"
            R"("input_idle_seconds":0.25,"stale":true,"age_seconds":4611686018427387904,"message":"m"})");
  EXPECT_EQ(decoded(encoded(full)), full);
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
  const struct {
    const char* json;
    Kind kind;
    foundation::CodingPath path;
  } cases[] = {
      {"[]", Kind::typeMismatch, {}},
      {"null", Kind::typeMismatch, {}},
      {"\"locked\"", Kind::typeMismatch, {}},
      {"{", Kind::dataCorrupted, {}},
      {R"({"app":1})", Kind::typeMismatch, {"app"}},
      {R"({"status":"Locked"})", Kind::dataCorrupted, {"status"}},
      {R"({"status":""})", Kind::dataCorrupted, {"status"}},
      {R"({"status":0})", Kind::typeMismatch, {"status"}},
      {R"({"confidence":2.5})", Kind::dataCorrupted, {"confidence"}},
      {R"({"confidence":"3"})", Kind::typeMismatch, {"confidence"}},
      {R"({"confidence":true})", Kind::typeMismatch, {"confidence"}},
      {R"({"age_seconds":9223372036854775808})", Kind::dataCorrupted, {"age_seconds"}},
      {R"({"face_present":1})", Kind::typeMismatch, {"face_present"}},
      {R"({"companion_present":0})", Kind::typeMismatch, {"companion_present"}},
      {R"({"stale":"true"})", Kind::typeMismatch, {"stale"}},
      {R"({"input_idle_seconds":"1"})", Kind::typeMismatch, {"input_idle_seconds"}},
      {R"({"seen_at":1763307695})", Kind::typeMismatch, {"seen_at"}},
      {R"({"seen_at":"2026-11-16"})", Kind::dataCorrupted, {"seen_at"}},
      {R"({"seen_at":""})", Kind::dataCorrupted, {"seen_at"}},
  };
  for (const auto& c : cases) {
    Snapshot untouched{.app = "before"};
    try {
      untouched = decoded(c.json);
      ADD_FAILURE() << c.json;
    } catch (const DecodingError& error) {
      EXPECT_EQ(error.kind, c.kind) << c.json;
      EXPECT_EQ(error.codingPath, c.path) << c.json;
      if (c.path == foundation::CodingPath{"seen_at"} && c.kind == Kind::dataCorrupted)
        EXPECT_EQ(error.debugDescription, "Invalid ISO8601 date");
    }
    EXPECT_EQ(untouched, Snapshot{.app = "before"});
  }
}

TEST(Snapshot, DatesLoseTheirFractionWhenWritten) {
  const auto read = decoded(R"({"seen_at":"2026-11-16T17:41:35.500+02:00"})");
  EXPECT_EQ(read.seenAt, moment + 500ms);
  EXPECT_EQ(decoded(encoded(read)).seenAt, moment);
  EXPECT_NE(decoded(encoded(read)), read);
}

TEST(Snapshot, RefusesToEncodeWhatJSONCannotHold) {
  for (const double idle : {std::nan(""), static_cast<double>(INFINITY), -static_cast<double>(INFINITY)}) {
    try {
      encoded({.app = "a", .inputIdleSeconds = idle});
      ADD_FAILURE() << idle;
    } catch (const foundation::EncodingError& error) {
      EXPECT_EQ(error.codingPath, foundation::CodingPath{"input_idle_seconds"});
    }
  }
}

TEST(Snapshot, EqualsByMeaning) {
  const auto named = [](const char* name) { return Snapshot{.deviceName = name}; };
  EXPECT_EQ(named("Caf\u00e9"), named("Cafe\u0301"));
  EXPECT_EQ(named("\uac00"), named("\u1100\u1161"));
  EXPECT_EQ(named("q\u0307\u0323"), named("q\u0323\u0307"));
  EXPECT_NE(named("Cafe"), named("Caf\u00e9"));
  EXPECT_NE(named("\ufb01"), named("fi"));  // a compatibility form, not a canonical one
  EXPECT_NE(named("a\xff"), named("e\u0301\xff"));
  EXPECT_NE(named(""), Snapshot{});
  EXPECT_NE(Snapshot{.message = "a"}, Snapshot{.message = "b"});
  EXPECT_NE(Snapshot{.stale = false}, Snapshot{});
  EXPECT_NE(Snapshot{.seenAt = moment}, Snapshot{.seenAt = moment + 1us});
  EXPECT_NE(Snapshot{.inputIdleSeconds = std::nan("")}, Snapshot{.inputIdleSeconds = std::nan("")});
}

TEST(Snapshot, DisplayLines) {
  const auto unknown = TarnoMacStatus::unknown;
  const struct {
    Snapshot snapshot;
    TarnoMacStatus resolved;
    const char* statusLine;
    const char* detailLine;
  } cases[] = {
      {{}, unknown, "Unknown", "Waiting for Tarno status."},
      {{.status = unknown}, unknown, "Unknown", "Waiting for Tarno status."},
      {{.status = TarnoMacStatus::locked, .reason = "Mac locked.", .message = "m"},
       TarnoMacStatus::locked,
       "Locked",
       "Mac locked."},
      {{.status = TarnoMacStatus::unlocked, .reason = "", .stale = false, .message = ""},
       TarnoMacStatus::unlocked,
       "Unlocked",
       "Waiting for Tarno status."},
      {{.status = TarnoMacStatus::locking, .reason = "", .message = "m"},
       TarnoMacStatus::locking,
       "Locking",
       "m"},
      {{.reason = " ", .message = "m"}, unknown, "Unknown", " "},
      {{.status = TarnoMacStatus::unlocked, .reason = "r", .stale = true, .message = "m"},
       unknown,
       "Status stale",
       "Mac status is stale. Refresh Tarno before trusting it."},
      {{.stale = true, .ageSeconds = 3599},
       unknown,
       "Status stale",
       "Mac status is 59m old. Refresh Tarno before trusting it."},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(c.snapshot.resolvedStatus(), c.resolved);
    EXPECT_EQ(c.snapshot.statusLine(), c.statusLine);
    EXPECT_EQ(c.snapshot.detailLine(), c.detailLine);
  }
}

}  // namespace
