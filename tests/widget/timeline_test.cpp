#include <gtest/gtest.h>

#include "support/temporary_store.hpp"
#include "tarno/shared/coding/json.hpp"
#include "tarno/shared/persistence/mac_defaults.hpp"
#include "tarno/widget/extension/status_widget.hpp"
#include "tarno/widget/timeline/widget_entry.hpp"

namespace {

using namespace std::chrono;
using tarno::Date;
using widgetkit::NSExtensionMain;
using Entry = TarnoMacWidgetEntry;

constexpr Date start = sys_days{2026y / November / 16} + 15h;

/// A clock that runs one second further at every reading.
struct TickingClock {
  int readings = 0;
  tarno::ClockOverride clock{[this] { return start + seconds{readings++}; }};
};

/// The provider as a host sees it.
const auto provider = TarnoMacStatusWidget{}.body().provider;

TEST(Placeholder, IsALockedMacAndReadsTheClockThreeTimes) {
  TickingClock clock;
  const auto entry = Entry::placeholder();
  EXPECT_EQ(clock.readings, 3);
  EXPECT_EQ(entry.date, start);
  EXPECT_EQ(entry.lastRefresh, start + 2s);
  EXPECT_EQ(
      TarnoJSON::encoder().encode(entry.status.value()),
      R"({"schema":"tarno.remote.v1","app":"Tarno","event":"locked","device_name":"Kivo's Mac",)"
      R"("seen_at":"2026-11-16T15:00:01Z","status":"locked","reason":"Mac locked.","source":"Tarno",)"
      R"("face_present":true,"companion_present":true,"input_idle_seconds":3.0,"stale":false,"age_seconds":0})");
}

TEST(Provider, ReadsTheStoreAnewForEveryTimeline) {
  const TemporaryStore temporary;
  TickingClock clock;
  const auto empty = provider->timeline({});
  EXPECT_EQ(clock.readings, 2);
  ASSERT_EQ(empty.entries.size(), 1u);
  EXPECT_EQ(empty.entries[0].date, start);
  EXPECT_EQ(std::any_cast<Entry>(empty.entries[0].value), (Entry{.date = start}));
  EXPECT_EQ(empty.policy.date(), start + 1s + 30s);  // counted from the second reading

  TarnoMacDefaults::saveStatus({.status = TarnoMacStatus::unlocked}, start - 200s);
  const TarnoMacStatusSnapshot stale{.status = TarnoMacStatus::unlocked, .stale = true, .ageSeconds = 202};
  EXPECT_EQ(std::any_cast<Entry>(provider->timeline({}).entries.at(0).value),
            (Entry{start + 2s, stale, start - 200s}));
}

TEST(Extension, ServesOnlyTheHostThatStartedIt) {
  int calls = 0;
  const widgetkit::ExtensionHost failing = [&](const auto&) {
    ++calls;
    throw std::runtime_error{"host"};
  };
  EXPECT_THROW(NSExtensionMain(TarnoMacWidget_main, failing), std::runtime_error);
  EXPECT_EQ(TarnoMacWidget_main(), 0);
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(NSExtensionMain([] { return 7; }, failing), 7);
}

}  // namespace
