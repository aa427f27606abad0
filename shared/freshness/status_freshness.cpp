#include "tarno/shared/freshness/status_freshness.hpp"

#include <algorithm>
#include <cmath>

namespace TarnoStatusFreshness {

std::optional<std::int64_t> ageSeconds(std::optional<tarno::Date> receivedAt, tarno::Date now) {
  if (!receivedAt) return std::nullopt;
  return std::max<std::int64_t>(tarno::wholeSecondsBetween(*receivedAt, now), 0);
}

tarno::Date staleFrom(tarno::Date receivedAt) {
  // Ages are whole seconds: the limit is exceeded one second later.
  const tarno::TimeInterval firstStaleAge{std::floor(localStaleAfter.count()) + 1};
  return tarno::addingTimeInterval(receivedAt, firstStaleAge);
}

std::string ageText(std::int64_t seconds) {
  if (seconds < 60) return std::to_string(seconds) + "s";
  if (seconds < 3600) return std::to_string(seconds / 60) + "m";
  return std::to_string(seconds / 3600) + "h";
}

std::string staleDetail(std::optional<std::int64_t> ageSeconds) {
  const auto state = ageSeconds ? ageText(*ageSeconds) + " old" : std::string{"stale"};
  return "Mac status is " + state + ". Refresh Tarno before trusting it.";
}

}  // namespace TarnoStatusFreshness
