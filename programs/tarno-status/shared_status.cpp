#include "tarno/tarno-status/shared_status.hpp"

#include "tarno/foundation/suite_store.hpp"
#include "tarno/shared/model/status_display.hpp"
#include "tarno/shared/persistence/mac_defaults.hpp"

namespace status {

SharedStatus readSharedStatus(tarno::Date now) {
  auto [store, failure, damage] = tarno::openSuite(TarnoMacDefaults::appGroupIdentifier);
  if (!store) return {.fault = failure};
  if (!damage.empty()) return {.store = store, .fault = damage + "; the next save sets it aside"};
  auto [status, fault] = TarnoMacDefaults::diagnoseStatus(*store, now);
  return {store, status, fault};
}

bool isFresh(const std::optional<TarnoStoredMacStatus>& status) {
  return status && status->receivedAt && !status->snapshot.isStale();
}

TileReport tileReport(const std::optional<TarnoStoredMacStatus>& stored) {
  using namespace TarnoStatusDisplay;
  std::optional<TarnoMacStatusSnapshot> report;
  if (stored) report = stored->snapshot;
  const auto counts = report ? report->resolvedStatus() : TarnoMacStatus{TarnoMacStatus::unknown};
  return {.status = std::string{counts.rawValue()},
          .statusLine = statusLine(report),
          .detailLine = detailLine(report),
          .presence = presence(report),
          .device = deviceName(report),
          .isStale = report && report->isStale(),
          .ageSeconds = report ? report->ageSeconds : std::nullopt,
          .receivedAt = stored ? stored->receivedAt : std::nullopt};
}

}  // namespace status
