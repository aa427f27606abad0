#include <gtest/gtest.h>

#include "shared/persistence/mac_defaults.hpp"
#include "support/temporary_store.hpp"
#include "widget/extension/status_widget.hpp"
#include "widget/timeline/widget_entry.hpp"

namespace {

using namespace std::chrono;
using foundation::Date;
using Entry = TarnoMacWidgetEntry;

constexpr Date start = sys_days{2026y / November / 16} + 15h;

/// A clock that runs one second further at every reading.
class TickingClock {
 public:
  int readings = 0;

 private:
  foundation::ClockOverride override_{[this] { return start + seconds{readings++}; }};
};

/// The provider as a host sees it.
const auto provider = TarnoMacStatusWidget{}.body().provider;

Entry own(const widgetkit::AnyTimelineEntry& entry) {
  auto result = std::any_cast<Entry>(entry.value);
  EXPECT_EQ(entry.date, result.date);
  return result;
}

Entry timelineEntry() { return own(provider->timeline({}).entries.at(0)); }

TEST(Placeholder, IsALockedMacAndReadsTheClockThreeTimes) {
  TickingClock clock;
  const auto entry = Entry::placeholder();
  EXPECT_EQ(clock.readings, 3);
  EXPECT_EQ(entry.date, start);
  EXPECT_EQ(entry.lastRefresh, start + 2s);
  EXPECT_EQ(entry.status, (TarnoMacStatusSnapshot{.schema = "tarno.remote.v1",
                                                  .app = "Tarno",
                                                  .event = "locked",
                                                  .deviceName = "Kivo's Mac",
                                                  .seenAt = start + 1s,
                                                  .status = TarnoMacStatus::locked,
                                                  .reason = "Mac locked.",
                                                  .source = "Tarno",
                                                  .facePresent = true,
                                                  .companionPresent = true,
                                                  .inputIdleSeconds = 3.0,
                                                  .stale = false,
                                                  .ageSeconds = 0}));
}

TEST(Provider, ReadsTheStoreAnewForEveryTimeline) {
  const TemporaryStore temporary;
  TickingClock clock;
  const auto empty = provider->timeline({});
  EXPECT_EQ(clock.readings, 2);
  ASSERT_EQ(empty.entries.size(), 1u);
  EXPECT_EQ(own(empty.entries[0]), (Entry{.date = start}));
  EXPECT_EQ(empty.policy.date(), start + 1s + 30s);  // counted from the second reading

  const TarnoMacStatusSnapshot saved{.status = TarnoMacStatus::unlocked};
  TarnoMacDefaults::persistStatus(saved, start - 200s, std::nullopt, *TarnoMacDefaults::store());
  const auto stale = timelineEntry();
  EXPECT_EQ(stale,
            (Entry{start + 2s, saved.withLocalFreshness(start - 200s, start + 2s, 150s), start - 200s}));
  EXPECT_TRUE(stale.status->isStale());

  const auto store = TarnoMacDefaults::store();
  store->set(TarnoMacDefaults::lastStatusAt, "not a date");
  store->synchronize();
  EXPECT_EQ(timelineEntry(), (Entry{start + 4s, saved, {}}));
}

TEST(Provider, OnlyPreviewsAndPlaceholdersLeaveTheStoreAlone) {
  const TemporaryStore temporary;
  const foundation::ClockOverride clock{start};
  TarnoMacDefaults::persistStatus({.status = TarnoMacStatus::locking}, start, std::nullopt,
                                  *TarnoMacDefaults::store());
  EXPECT_EQ(own(provider->snapshot({.isPreview = true})), Entry::placeholder());
  EXPECT_EQ(own(provider->placeholder({})), Entry::placeholder());
  EXPECT_EQ(own(provider->snapshot({})), timelineEntry());
  EXPECT_EQ(timelineEntry().status->status, TarnoMacStatus::locking);
}

}  // namespace
