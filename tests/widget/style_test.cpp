#include "widget/style/widget_style.hpp"

#include <gtest/gtest.h>

namespace {

using namespace TarnoMacWidgetStyle;
using Snapshot = TarnoMacStatusSnapshot;

TEST(WidgetStyle, StalenessThenAbsenceThenStatusDecide) {
  const auto stale = "clock.badge.exclamationmark";
  const auto question = "questionmark.circle.fill";
  const struct {
    std::optional<Snapshot> snapshot;
    Color color;
    const char* icon;
  } cases[] = {
      {{}, muted, question},
      {Snapshot{}, muted, question},
      {Snapshot{.status = TarnoMacStatus::unknown}, muted, question},
      {Snapshot{.status = TarnoMacStatus::locked}, teal, "lock.fill"},
      {Snapshot{.status = TarnoMacStatus::unlocked, .stale = false}, coral, "lock.open.fill"},
      {Snapshot{.status = TarnoMacStatus::locking, .stale = false}, gold, "lock.rotation"},
      {Snapshot{.status = TarnoMacStatus::locked, .stale = true}, muted, stale},
      {Snapshot{.stale = true}, muted, stale},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(statusColor(c.snapshot), c.color) << c.icon;
    EXPECT_EQ(statusIcon(c.snapshot), c.icon);
  }
}

}  // namespace
