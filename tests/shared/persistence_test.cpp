#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <thread>

#include "shared/persistence/mac_defaults.hpp"
#include "support/temporary_store.hpp"

namespace {

using namespace std::chrono;
using namespace TarnoMacDefaults;
using foundation::Data;
using foundation::Date;
using foundation::DefaultsValue;
using Snapshot = TarnoMacStatusSnapshot;

constexpr Date now = sys_days{2026y / November / 16} + 15h + 41min + 35s + 250ms;

/// A store that remembers what was asked of it, in order.
class RecordingStore : public foundation::UserDefaults {
 public:
  std::optional<DefaultsValue> object(std::string_view key) const override {
    calls += "get " + std::string{key} + "; ";
    const auto found = values.find(key);
    return found != values.end() ? std::optional{found->second} : std::nullopt;
  }
  void set(std::string_view key, DefaultsValue value) override {
    calls += "set " + std::string{key} + "; ";
    values.insert_or_assign(std::string{key}, std::move(value));
  }
  bool synchronize() override {
    calls += "synchronize";
    return false;
  }

  mutable std::string calls;
  std::map<std::string, DefaultsValue, std::less<>> values;
};

TEST(PersistStatus, WritesInOrderAndSynchronizesOnce) {
  RecordingStore store;
  persistStatus({.status = TarnoMacStatus::locked}, now, "mirror", store);
  EXPECT_EQ(store.calls,
            "set tarno.lastStatus; set tarno.lastStatusAt; set tarno.lastStatusValue; "
            "set tarno.lastStatusMirrorKey; synchronize");
  EXPECT_EQ(store.data(lastStatus), Data{R"({"status":"locked"})"});
  EXPECT_EQ(store.object(lastStatusAt), DefaultsValue{now});
  EXPECT_EQ(store.string(lastStatusValue), "locked");

  persistStatus({.status = TarnoMacStatus::unlocked, .stale = true}, now, std::nullopt, store);
  EXPECT_EQ(store.string(lastStatusValue), "unknown");
  EXPECT_EQ(store.string(lastStatusMirrorKey), "mirror");

  store.calls.clear();
  persistStatus({.inputIdleSeconds = std::nan("")}, now + 1h, "other", store);
  EXPECT_EQ(store.calls, "");
}

TEST(LoadStatus, TakesTheFirstSourceThatWorks) {
  const auto judged = [](bool stale, std::int64_t age) {
    return Snapshot{.status = TarnoMacStatus::locked, .stale = stale, .ageSeconds = age};
  };
  const auto plain = [](bool stale, std::optional<std::int64_t> age) {
    return Snapshot{.schema = "tarno.remote.v1",
                    .app = "Tarno",
                    .event = "last_status_value",
                    .status = TarnoMacStatus::locked,
                    .stale = stale,
                    .ageSeconds = age,
                    .message = "Last saved Mac status."};
  };
  const Data record{R"({"status":"locked","stale":false,"age_seconds":999})"};
  const Data badField{R"({"status":"locked","stale":1})"};
  const struct {
    const char* what;
    std::optional<DefaultsValue> at, record, value;
    std::optional<Snapshot> loaded;
  } cases[] = {{"empty store", {}, {}, {}, {}},
               {"only a receipt date", now, {}, {}, {}},
               {"plain value alone", {}, {}, "locked", plain(true, {})},
               {"plain value, fresh", now - 100s, {}, "locked", plain(false, 100)},
               {"plain value, old", now - 151s, {}, "locked", plain(true, 151)},
               {"no such value", now, {}, "Locked", {}},
               {"value of another type", now, {}, Data{"locked"}, {}},
               {"record that is no JSON", now, Data{"\xff{"}, "locked", plain(false, 0)},
               {"record with a bad field", now, badField, "locked", plain(false, 0)},
               {"record stored as text", now, "{}", "locked", plain(false, 0)},
               {"record wins", {}, record, "unlocked", judged(false, 999)},
               {"record judged", now - 151s, record, {}, judged(true, 151)},
               {"receipt date as text", "2026-11-16T15:41:35Z", record, {}, judged(false, 999)},
               {"receipt date as number", 5.0, {}, "locked", plain(true, {})}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    RecordingStore store;
    if (c.at) store.set(lastStatusAt, *c.at);
    if (c.record) store.set(lastStatus, *c.record);
    if (c.value) store.set(lastStatusValue, *c.value);
    store.calls.clear();
    const auto loaded = loadStatus(store, now);
    EXPECT_EQ(loaded ? std::optional{loaded->snapshot} : std::nullopt, c.loaded);
    if (loaded) EXPECT_EQ(loaded->receivedAt.has_value(), c.at && std::holds_alternative<Date>(*c.at));
    EXPECT_TRUE(store.calls.starts_with("get tarno.lastStatusAt; get tarno.lastStatus; "));
  }
}

TEST(MacDefaults, WhatIsSavedIsLoaded) {
  const TemporaryStore temporary;
  testing::internal::CaptureStdout();
  const Snapshot saved{.deviceName = "Kivo's Mac", .status = TarnoMacStatus::locked, .stale = false};
  const TarnoStoredMacStatus loaded{saved.withLocalFreshness(now, now, 150s), now};
  persistStatus(saved, now, std::nullopt, *store());
  EXPECT_EQ(loadStatus(*store(), now), loaded);
  saveStatus({.status = TarnoMacStatus::unlocked}, now - 1h, "mirror");
  EXPECT_EQ(loadStatus(*store(), now)->receivedAt, now - 1h);
  saveStatus(saved, now);
  EXPECT_EQ(loadStatus(*store(), now), loaded);
  EXPECT_EQ(store()->string(lastStatusValue), "locked");
  EXPECT_EQ(store()->string(lastStatusMirrorKey), "mirror");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST(MacDefaults, SavingSaysWhatWentWrongAndLeavesTheStoreAsItIs) {
  using Kind = foundation::SuiteError::Kind;
  const TemporaryStore temporary;
  const auto folder = temporary.folder() / std::string{appGroupIdentifier};
  saveStatus({.status = TarnoMacStatus::locked}, now);
  const auto failsWith = [](const Snapshot& snapshot, Date receivedAt, const std::string& mirrorKey) {
    try {
      saveStatus(snapshot, receivedAt, mirrorKey);
    } catch (const foundation::SuiteError& error) {
      return std::optional{error.kind()};
    }
    return std::optional<Kind>{};
  };
  EXPECT_EQ(failsWith({.inputIdleSeconds = std::nan("")}, now, ""), Kind::value);
  EXPECT_EQ(failsWith({}, Date::max(), ""), Kind::value);
  EXPECT_EQ(failsWith({}, now, std::string(5 << 20, 'x')), Kind::value);
  EXPECT_EQ(loadStatus(*store(), now)->snapshot.status, TarnoMacStatus::locked);
  std::filesystem::permissions(folder, std::filesystem::perms::all);
  EXPECT_EQ(failsWith({}, now, ""), Kind::unusable);
}

TEST(MacDefaults, FallsBackAndSaysSoOnce) {
  const TemporaryStore temporary;
  const auto shared = temporary.folder() / std::string{appGroupIdentifier};
  std::filesystem::create_symlink("/", shared);
  testing::internal::CaptureStdout();
  std::vector<std::thread> threads(8);
  for (auto& thread : threads)
    thread = std::thread{[] { EXPECT_EQ(store(), foundation::UserDefaults::standard()); }};
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(store(), foundation::UserDefaults::standard());
  EXPECT_EQ(
      testing::internal::GetCapturedStdout(),
      "ERROR: TarnoMacDefaults could not initialise app-group UserDefaults 'K7T2M9Q4XW.dev.tarno.group'. "
      "Widget/app status sharing is broken — check entitlements and code signing.\n");
  std::filesystem::remove(shared);
  EXPECT_NE(store(), foundation::UserDefaults::standard());
}

}  // namespace
