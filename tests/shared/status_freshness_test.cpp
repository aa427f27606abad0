#include "shared/freshness/status_freshness.hpp"

#include <gtest/gtest.h>

#include "shared/freshness/stored_status.hpp"

namespace {

using namespace std::chrono;
using foundation::Date;
using Snapshot = TarnoMacStatusSnapshot;

constexpr Date now = sys_days{2026y / November / 16} + 15h;

TEST(Freshness, AgeIsWholeSecondsAndNeverNegative) {
  const std::pair<std::optional<Date>, std::optional<std::int64_t>> cases[] = {
      {{}, {}},
      {now, 0},
      {now - 149990ms, 149},
      {now + 30s, 0},
      {now + 100ms, 0},
      {foundation::earliestDate, duration_cast<seconds>(now - foundation::earliestDate).count()},
      {Date::max(), 0}};
  for (const auto& [receivedAt, age] : cases)
    EXPECT_EQ(TarnoStatusFreshness::ageSeconds(receivedAt, now), age);
  EXPECT_GT(TarnoStatusFreshness::ageSeconds(Date::min(), Date::max()), 0);
}

TEST(Freshness, OldMakesStaleButNothingMakesFresh) {
  const struct {
    Snapshot before;
    std::optional<Date> receivedAt;
    Snapshot after;
  } cases[] = {
      {{.ageSeconds = 999}, {}, {.ageSeconds = 999}},
      {{.ageSeconds = 999}, now - 150900ms, {.ageSeconds = 150}},
      {{.stale = false}, now - 150s, {.stale = false, .ageSeconds = 150}},
      {{.stale = false}, now - 151s, {.stale = true, .ageSeconds = 151}},
      {{}, now - 151s, {.stale = true, .ageSeconds = 151}},
      {{.stale = true}, now - 5s, {.stale = true, .ageSeconds = 5}},
      {{.status = TarnoMacStatus::locked}, now + 1h, {.status = TarnoMacStatus::locked, .ageSeconds = 0}},
  };
  for (const auto& c : cases)
    EXPECT_EQ(c.before.withLocalFreshness(c.receivedAt, now, TarnoStatusFreshness::localStaleAfter), c.after);
}

TEST(Freshness, StaleDetailNamesTheAge) {
  const std::pair<std::optional<std::int64_t>, const char*> cases[] = {
      {{}, "stale"},     {0, "0s old"},    {59, "59s old"},  {60, "1m old"},     {119, "1m old"},
      {3599, "59m old"}, {3600, "1h old"}, {7199, "1h old"}, {86400, "24h old"}, {-5, "-5s old"}};
  for (const auto& [age, words] : cases)
    EXPECT_EQ(TarnoStatusFreshness::staleDetail(age),
              "Mac status is " + std::string{words} + ". Refresh Tarno before trusting it.");
}

TEST(Freshness, StaleFromIsTheFirstStaleMoment) {
  const auto staleAt = [](Date moment) {
    return Snapshot{}.withLocalFreshness(now, moment, TarnoStatusFreshness::localStaleAfter).isStale();
  };
  EXPECT_EQ(TarnoStatusFreshness::staleFrom(now), now + 151s);
  EXPECT_FALSE(staleAt(now + 151s - 1us));
  EXPECT_TRUE(staleAt(now + 151s));
}

TEST(StoredStatus, ComparesTheReceiptDateToo) {
  const TarnoStoredMacStatus stored{Snapshot{.status = TarnoMacStatus::locked}, now};
  EXPECT_EQ(stored, (TarnoStoredMacStatus{stored.snapshot, now}));
  EXPECT_NE(stored, (TarnoStoredMacStatus{stored.snapshot, now + 1us}));
  EXPECT_NE(stored, (TarnoStoredMacStatus{stored.snapshot, {}}));
  EXPECT_NE(stored, (TarnoStoredMacStatus{Snapshot{}, now}));
}

}  // namespace
