#include "shared/freshness/status_freshness.hpp"

#include <algorithm>

#include "shared/model/status_snapshot.hpp"

namespace TarnoStatusFreshness {

std::optional<std::int64_t> ageSeconds(std::optional<foundation::Date> receivedAt, foundation::Date now) {
  if (!receivedAt) return std::nullopt;
  return std::max<std::int64_t>(foundation::wholeSecondsBetween(*receivedAt, now), 0);
}

std::string staleDetail(std::optional<std::int64_t> ageSeconds) {
  if (!ageSeconds) return "Mac status is stale. Refresh Tarno before trusting it.";
  const auto age = *ageSeconds < 60     ? std::to_string(*ageSeconds) + "s"
                   : *ageSeconds < 3600 ? std::to_string(*ageSeconds / 60) + "m"
                                        : std::to_string(*ageSeconds / 3600) + "h";
  return "Mac status is " + age + " old. Refresh Tarno before trusting it.";
}

}  // namespace TarnoStatusFreshness

TarnoMacStatusSnapshot TarnoMacStatusSnapshot::withLocalFreshness(std::optional<foundation::Date> receivedAt,
                                                                  foundation::Date now,
                                                                  foundation::TimeInterval staleAfter) const {
  auto judged = *this;
  const auto age = TarnoStatusFreshness::ageSeconds(receivedAt, now);
  if (!age) return judged;
  judged.ageSeconds = age;
  if (static_cast<double>(*age) > staleAfter.count()) judged.stale = true;
  return judged;
}
