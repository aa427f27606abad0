#include <gtest/gtest.h>

#include <cmath>
#include <thread>

#include "shared/persistence/mac_defaults.hpp"
#include "temporary_store.hpp"

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
    calls.push_back("get " + std::string{key});
    return foundation::UserDefaults::standard()->object(prefix + std::string{key});
  }
  void set(std::string_view key, DefaultsValue value) override {
    calls.push_back("set " + std::string{key});
    foundation::UserDefaults::standard()->set(prefix + std::string{key}, std::move(value));
  }
  bool synchronize() override {
    calls.emplace_back("synchronize");
    return false;
  }

  mutable std::vector<std::string> calls;
  std::string prefix = std::to_string(reinterpret_cast<std::uintptr_t>(this)) + "/" + std::to_string(++made);

 private:
  static inline int made = 0;
};

TEST(MacDefaults, IdentifierHasItsShape) { EXPECT_EQ(appGroupIdentifier.size(), 26u); }

TEST(PersistStatus, WritesInOrderAndSynchronizesOnce) {
  RecordingStore store;
  persistStatus({.status = TarnoMacStatus::locked}, now, "mirror", store);
  EXPECT_EQ(store.calls, (std::vector<std::string>{"set tarno.lastStatus", "set tarno.lastStatusAt",
                                                   "set tarno.lastStatusValue",
                                                   "set tarno.lastStatusMirrorKey", "synchronize"}));
  EXPECT_EQ(store.data(lastStatus), Data{R"({"status":"locked"})"});
  EXPECT_EQ(store.object(lastStatusAt), DefaultsValue{now});

  persistStatus({.status = TarnoMacStatus::unlocked}, now, std::nullopt, store);
  EXPECT_EQ(store.string(lastStatusMirrorKey), "mirror");

  store.calls.clear();
  persistStatus({.inputIdleSeconds = std::nan("")}, now + 1h, "other", store);
  EXPECT_TRUE(store.calls.empty());
}

TEST(PersistStatus, PlainValueIsTheResolvedStatus) {
  const std::pair<Snapshot, const char*> cases[] = {
      {{.status = TarnoMacStatus::locking}, "locking"},
      {{.status = TarnoMacStatus::locked, .stale = false}, "locked"},
      {{.status = TarnoMacStatus::locked, .stale = true}, "unknown"},
      {{}, "unknown"}};
  for (const auto& [snapshot, value] : cases) {
    RecordingStore store;
    persistStatus(snapshot, now, std::nullopt, store);
    EXPECT_EQ(store.string(lastStatusValue), value);
  }
}

TEST(LoadStatus, TakesTheFirstSourceThatWorks) {
  const auto plain = [](TarnoMacStatus status, bool stale, std::optional<std::int64_t> age) {
    return Snapshot{.schema = "tarno.remote.v1",
                    .app = "Tarno",
                    .event = "last_status_value",
                    .status = status,
                    .stale = stale,
                    .ageSeconds = age,
                    .message = "Last saved Mac status."};
  };
  const auto locked = TarnoMacStatus::locked;
  using Value = std::optional<DefaultsValue>;
  const Data record{R"({"status":"locked","stale":false,"age_seconds":999})"};
  const struct {
    const char* what;
    Value at, record, value;
    std::optional<Snapshot> loaded;
  } cases[] = {
      {"empty store", {}, {}, {}, {}},
      {"only a receipt date", now, {}, {}, {}},
      {"plain value alone", {}, {}, "locked", plain(locked, true, {})},
      {"plain value, fresh", now - 100s, {}, "locked", plain(locked, false, 100)},
      {"plain value, just fresh", now - 150900ms, {}, "locked", plain(locked, false, 150)},
      {"plain value, old", now - 151s, {}, "locked", plain(locked, true, 151)},
      {"no such value", now, {}, "Locked", {}},
      {"value of another type", now, {}, Data{"locked"}, {}},
      {"record that is no JSON", now, Data{"\xff{"}, "locked", plain(locked, false, 0)},
      {"record with a bad field", now, Data{R"({"status":"locked","stale":1})"}, "locked",
       plain(locked, false, 0)},
      {"record stored as text", now, "{}", "locked", plain(locked, false, 0)},
      {"record wins", {}, record, "unlocked", Snapshot{.status = locked, .stale = false, .ageSeconds = 999}},
      {"record judged", now - 151s, record, {}, Snapshot{.status = locked, .stale = true, .ageSeconds = 151}},
      {"receipt in the future",
       now + 1h,
       record,
       {},
       Snapshot{.status = locked, .stale = false, .ageSeconds = 0}},
      {"receipt date as text",
       "2026-11-16T15:41:35Z",
       record,
       {},
       Snapshot{.status = locked, .stale = false, .ageSeconds = 999}},
      {"receipt date as number", 5.0, {}, "locked", plain(locked, true, {})},
      {"stale stays stale",
       now - 10s,
       Data{R"({"stale":true})"},
       {},
       Snapshot{.stale = true, .ageSeconds = 10}},
  };
  for (const auto& c : cases) {
    RecordingStore store;
    if (c.at) store.set(lastStatusAt, *c.at);
    if (c.record) store.set(lastStatus, *c.record);
    if (c.value) store.set(lastStatusValue, *c.value);
    store.calls.clear();
    const auto loaded = loadStatus(store, now);
    EXPECT_EQ(loaded ? std::optional{loaded->snapshot} : std::nullopt, c.loaded) << c.what;
    if (loaded)
      EXPECT_EQ(loaded->receivedAt.has_value(), c.at && std::holds_alternative<Date>(*c.at)) << c.what;
    ASSERT_GE(store.calls.size(), 2u);
    EXPECT_EQ(store.calls[0], "get tarno.lastStatusAt") << c.what;
    EXPECT_EQ(store.calls[1], "get tarno.lastStatus") << c.what;
  }
}

TEST(MacDefaults, WhatIsSavedIsLoaded) {
  const TemporaryStore temporary;
  testing::internal::CaptureStdout();
  const Snapshot saved{.deviceName = "Kivo's Mac", .status = TarnoMacStatus::locked, .stale = false};
  persistStatus(saved, now, std::nullopt, *store());
  const auto loaded = loadStatus(*store(), now);
  ASSERT_TRUE(loaded);
  EXPECT_EQ(loaded->receivedAt, now);
  EXPECT_EQ(loaded->snapshot, saved.withLocalFreshness(now, now, 150s));
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST(MacDefaults, FallsBackAndSaysSoOnce) {
  const TemporaryStore temporary;
  const auto shared = temporary.folder() / std::string{appGroupIdentifier};
  std::filesystem::create_symlink("/", shared);
  testing::internal::CaptureStdout();
  std::vector<std::thread> threads;
  for (int i = 0; i < 8; ++i)
    threads.emplace_back([] { EXPECT_EQ(store(), foundation::UserDefaults::standard()); });
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
