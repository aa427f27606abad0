#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <thread>

#include "support/temporary_store.hpp"
#include "tarno/shared/coding/json.hpp"
#include "tarno/shared/persistence/mac_defaults.hpp"

namespace {

using namespace std::chrono;
using namespace TarnoMacDefaults;
using tarno::Data;
using tarno::Date;
using tarno::DefaultsValue;
using Snapshot = TarnoMacStatusSnapshot;

constexpr Date now = sys_days{2026y / November / 16} + 15h + 41min + 35s + 250ms;

/// A store that records the calls to it in order.
class RecordingStore : public tarno::UserDefaults {
 public:
  std::optional<DefaultsValue> object(std::string_view key) const override {
    const auto isOfKey = [&](const auto& call) { return call.first == key; };
    const auto found = std::find_if(calls.rbegin(), calls.rend(), isOfKey);
    return found != calls.rend() ? std::optional{found->second} : std::nullopt;
  }
  void set(std::string_view key, DefaultsValue value) override { calls.emplace_back(key, std::move(value)); }
  bool synchronize() override { return set("synchronize", {}), false; }

  std::vector<std::pair<std::string, DefaultsValue>> calls;
};

TEST(PersistStatus, WritesInOrderAndSynchronizesOnce) {
  RecordingStore store;
  persistStatus({.status = TarnoMacStatus::locked}, now, "mirror", store);
  const decltype(store.calls) calls{{"tarno.lastStatus", Data{R"({"status":"locked"})"}},
                                    {"tarno.lastStatusAt", now},
                                    {"tarno.lastStatusValue", "locked"},
                                    {"tarno.lastStatusMirrorKey", "mirror"},
                                    {"synchronize", {}}};
  EXPECT_EQ(store.calls, calls);
  persistStatus({.inputIdleSeconds = std::nan("")}, now + 1h, "other", store);
  EXPECT_EQ(store.calls, calls);
  persistStatus({.status = TarnoMacStatus::unlocked, .stale = true}, now, std::nullopt, store);
  EXPECT_EQ(store.string(lastStatusValue), "unknown");
  EXPECT_EQ(store.string(lastStatusMirrorKey), "mirror");
}

TEST(LoadStatus, TakesTheFirstSourceThatWorks) {
  const std::string plain =
      R"({"schema":"tarno.remote.v1","app":"Tarno","event":"last_status_value","status":"locked",)";
  const std::string end = R"("message":"Last saved Mac status."})";
  const Data record{R"({"status":"locked","stale":false,"age_seconds":999})"};
  using Stored = std::optional<DefaultsValue>;
  const std::string alone = "there is a plain value, but no record";
  const std::tuple<Stored, Stored, Stored, std::string, std::string> rows[] = {
      {now, {}, {}, "", ""},
      {{}, {}, "locked", plain + R"("stale":true,)" + end, alone},
      {now, {}, Data{"locked"}, "", alone},
      {now, "{}", "Locked", "", "the record is not of the type data"},
      {now, Data{R"({"stale":1})"}, "locked", plain + R"("stale":false,"age_seconds":0,)" + end,
       "the record cannot be decoded: stale: expected true or false, found a number"},
      {now - 151s, record, "unlocked", R"({"status":"locked","stale":true,"age_seconds":151})", ""},
      {"2026-11-16T15:41:35Z", record, {}, record.bytes, ""}};
  for (const auto& [receivedAt, json, value, expected, fault] : rows) {
    SCOPED_TRACE(expected + fault);
    RecordingStore store;
    if (receivedAt) store.set(lastStatusAt, *receivedAt);
    if (json) store.set(lastStatus, *json);
    if (value) store.set(lastStatusValue, *value);
    const auto loaded = loadStatus(store, now);
    EXPECT_EQ(diagnoseStatus(store, now).fault, fault);
    EXPECT_EQ(loaded ? TarnoJSON::encoder().encode(loaded->snapshot) : "", expected);
    if (loaded) EXPECT_EQ(loaded->receivedAt.has_value(), receivedAt && std::get_if<Date>(&*receivedAt));
  }
}

TEST(MacDefaults, WhatIsSavedIsLoadedAndWhatCannotBeStoredIsRefused) {
  const TemporaryStore temporary;
  saveStatus({.status = TarnoMacStatus::unlocked}, now - 1h, "mirror");
  persistStatus({.status = TarnoMacStatus::locked}, now - 2s, std::nullopt, *store());
  const TarnoStoredMacStatus loaded{{.status = TarnoMacStatus::locked, .ageSeconds = 2}, now - 2s};
  EXPECT_EQ(loadStatus(*store(), now), loaded);
  EXPECT_EQ(store()->string(lastStatusMirrorKey), "mirror");
  const std::tuple<Snapshot, Date, const char*> unfit[] = {
      {{.inputIdleSeconds = std::nan("")},
       now,
       "input_idle_seconds: a number that is not finite cannot be written as JSON"},
      {{.message = "\xff"}, now, "message: text that is not UTF-8 cannot be written as JSON"},
      {{}, Date::max(), "tarno.lastStatusAt: is outside the years 0001 to 9999"}};
  for (const auto& [snapshot, receivedAt, reason] : unfit) try {
      saveStatus(snapshot, receivedAt);
      ADD_FAILURE() << reason;
    } catch (const tarno::SuiteError& error) {
      EXPECT_EQ(error.kind(), tarno::SuiteError::Kind::value);
      EXPECT_STREQ(error.what(), reason);
    }
  EXPECT_EQ(loadStatus(*store(), now), loaded);
}

TEST(MacDefaults, FallsBackAndSaysSoOnce) {
  const TemporaryStore temporary;
  std::filesystem::create_symlink("/", temporary.path / std::string{appGroupIdentifier});
  testing::internal::CaptureStdout();
  for (std::vector<std::jthread> threads(8); auto& thread : threads)
    thread = std::jthread{[] { EXPECT_EQ(store(), tarno::UserDefaults::standard()); }};
  EXPECT_EQ(
      testing::internal::GetCapturedStdout(),
      "ERROR: TarnoMacDefaults could not initialise app-group UserDefaults 'K7T2M9Q4XW.dev.tarno.group'. "
      "Widget/app status sharing is broken — check entitlements and code signing.\n");
}

}  // namespace
