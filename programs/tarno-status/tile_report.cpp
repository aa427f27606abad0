#include "tarno/tarno-status/tile_report.hpp"

#include <nlohmann/json.hpp>

#include "tarno/common/dates.hpp"
#include "tarno/shared/coding/json.hpp"

namespace status {

TileReport tileReport(const std::optional<TarnoStoredMacStatus>& stored) {
  std::optional<TarnoMacStatusSnapshot> snapshot;
  if (stored) snapshot = stored->snapshot;
  TileReport report{.status = std::string{TarnoMacStatus{TarnoMacStatus::unknown}.rawValue()},
                    .statusLine = "No status",
                    .detailLine = "Waiting for Tarno status.",
                    .presence = displayedPresence(snapshot),
                    .device = displayedDeviceName(snapshot)};
  if (!snapshot) return report;
  report.status = snapshot->resolvedStatus().rawValue();
  report.statusLine = snapshot->statusLine();
  report.detailLine = snapshot->detailLine();
  report.isStale = snapshot->isStale();
  report.ageSeconds = snapshot->ageSeconds;
  report.receivedAt = stored->receivedAt;
  return report;
}

std::string jsonText(const std::optional<TarnoStoredMacStatus>& stored, int indent) {
  nlohmann::ordered_json json;
  if (stored) {
    const auto report = tileReport(stored);
    json["status"] = report.status;
    json["status_line"] = report.statusLine;
    json["detail_line"] = report.detailLine;
    json["presence"] = report.presence;
    json["is_stale"] = report.isStale;
    json["age_seconds"] = nullptr;
    if (report.ageSeconds) json["age_seconds"] = *report.ageSeconds;
    json["received_at"] = nullptr;
    if (report.receivedAt) json["received_at"] = program::dateText(*report.receivedAt);
    json["snapshot"] = nlohmann::ordered_json::parse(TarnoJSON::encoder().encode(stored->snapshot));
  }
  return json.dump(indent);
}

}  // namespace status
