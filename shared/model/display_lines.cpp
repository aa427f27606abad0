#include "shared/freshness/status_freshness.hpp"
#include "shared/model/status_snapshot.hpp"

namespace {

bool hasText(const std::optional<std::string>& text) { return text && !text->empty(); }

}  // namespace

TarnoMacStatus TarnoMacStatusSnapshot::resolvedStatus() const {
  if (isStale()) return TarnoMacStatus::unknown;
  return status.value_or(TarnoMacStatus::unknown);
}

std::string TarnoMacStatusSnapshot::statusLine() const {
  if (isStale()) return "Status stale";
  return std::string{resolvedStatus().displayName()};
}

std::string TarnoMacStatusSnapshot::detailLine() const {
  if (isStale()) return TarnoStatusFreshness::staleDetail(ageSeconds);
  if (hasText(reason)) return *reason;
  if (hasText(message)) return *message;
  return "Waiting for Tarno status.";
}
