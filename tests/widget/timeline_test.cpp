#include <gtest/gtest.h>

#include "support/temporary_store.hpp"
#include "tarno/shared/coding/json.hpp"
#include "tarno/shared/persistence/mac_defaults.hpp"
#include "tarno/widget/extension/status_widget.hpp"
#include "tarno/widget/timeline/widget_entry.hpp"

namespace {

using namespace std::chrono;
using tarno::Date;
using Entry = TarnoMacWidgetEntry;

constexpr Date start = sys_days{2026y / November / 16} + 15h;

/// A clock that advances by one second at every reading.
struct TickingClock {
  int readings = 0;
  tarno::ClockOverride clock{[this] { return start + seconds{readings++}; }};
};

/// The only widget of the bundle.
const auto widget = std::get<0>(TarnoMacWidgetBundle{}.body()).body();

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

TEST(Provider, ReadsTheStoreAnewUnlessForAPreview) {
  const TemporaryStore temporary;
  TickingClock clock;
  const auto empty = timeline(widget, {});
  EXPECT_EQ(clock.readings, 2);
  EXPECT_EQ(empty.entries, std::vector{Entry{.date = start}});
  EXPECT_EQ(empty.policy.date, start + 1s + 30s);  // from the second reading
  TarnoMacDefaults::saveStatus({.status = TarnoMacStatus::unlocked}, start - 200s);
  TarnoMacStatusSnapshot stale{.status = TarnoMacStatus::unlocked, .stale = true, .ageSeconds = 202};
  EXPECT_EQ(timeline(widget, {}).entries.at(0), (Entry{start + 2s, stale, start - 200s}));
  stale.ageSeconds = 204;
  EXPECT_EQ(snapshot(widget, {}), (Entry{start + 4s, stale, start - 200s}));
  EXPECT_EQ(snapshot(widget, {.isPreview = true}).status->statusLine(), "Locked");
}

TEST(Extension, ServesOnlyTheHostThatStartedIt) {
  int calls = 0;
  const TarnoMacWidgetBundle::Host failing = [&](const auto&) {
    ++calls;
    throw std::runtime_error{"host"};
  };
  const auto run = widgetkit::NSExtensionMain<TarnoMacWidgetBundle>;
  EXPECT_THROW(run(TarnoMacWidget_main, failing), std::runtime_error);
  EXPECT_EQ(run([] { return 7; }, failing), 7);
  EXPECT_EQ(TarnoMacWidget_main(), 0);
  EXPECT_EQ(calls, 1);
}

}  // namespace
