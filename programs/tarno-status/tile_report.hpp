#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "tarno/shared/freshness/stored_status.hpp"

namespace status {

/// What the tile says, for other programs. Each value is safe to read alone: none passes a stale status off
/// as current.
struct TileReport {
  std::string
      status;  ///< the raw value of the status that counts; "unknown" when stale or when there is none
  std::string statusLine, detailLine, presence, device;
  bool isStale = false;
  std::optional<std::int64_t> ageSeconds;
  std::optional<tarno::Date> receivedAt;
};

TileReport tileReport(const std::optional<TarnoStoredMacStatus>& stored);

/// The same as a JSON object, beside the record itself; null when there is no status. `indent` is the number
/// of spaces for each level, -1 for all on one line.
std::string jsonText(const std::optional<TarnoStoredMacStatus>& stored, int indent);

}  // namespace status
