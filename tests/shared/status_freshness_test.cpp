#include "shared/freshness/status_freshness.hpp"

#include <gtest/gtest.h>

#include "shared/freshness/stored_status.hpp"

namespace {

using namespace std::chrono;
using foundation::Date;
using Snapshot = TarnoMacStatusSnapshot;

constexpr Date now = sys_days{2026y / November / 16} + 15h;

TEST(Freshness, OldMakesStaleButNothingMakesFresh) {
  const std::tuple<Snapshot, std::optional<Date>, Snapshot> rows[] = {
      {{.ageSeconds = 999}, {}, {.ageSeconds = 999}},
      {{.ageSeconds = 999}, now - 150999ms, {.ageSeconds = 150}},
      {{.stale = false}, now - 151s, {.stale = true, .ageSeconds = 151}},
      {{.stale = true}, now - 5s, {.stale = true, .ageSeconds = 5}},
      {{.status = TarnoMacStatus::locked}, now + 1h, {.status = TarnoMacStatus::locked, .ageSeconds = 0}},
      {{}, Date::max(), {.ageSeconds = 0}}};
  for (const auto& [before, receivedAt, after] : rows)
    EXPECT_EQ(before.withLocalFreshness(receivedAt, now, TarnoStatusFreshness::localStaleAfter), after);
  EXPECT_GT(TarnoStatusFreshness::ageSeconds(Date::min(), Date::max()), 0);
  EXPECT_EQ(TarnoStatusFreshness::staleFrom(now), now + 151s);
}

TEST(Freshness, StaleDetailNamesTheAge) {
  const std::pair<std::optional<std::int64_t>, const char*> rows[] = {
      {{}, "stale"},     {59, "59s old"},  {60, "1m old"},     {119, "1m old"},
      {3599, "59m old"}, {3600, "1h old"}, {86399, "23h old"}, {-5, "-5s old"}};
  for (const auto& [age, words] : rows)
    EXPECT_EQ(TarnoStatusFreshness::staleDetail(age),
              "Mac status is " + std::string{words} + ". Refresh Tarno before trusting it.");
}

}  // namespace
