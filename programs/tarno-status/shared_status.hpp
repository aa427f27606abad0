#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "tarno/foundation/date.hpp"
#include "tarno/foundation/user_defaults.hpp"
#include "tarno/shared/freshness/stored_status.hpp"

namespace status {

/// What the shared store says, read the way the widget reads it. Without a status and without a fault,
/// nothing is stored.
struct SharedStatus {
  std::shared_ptr<tarno::UserDefaults> store;  ///< null when it cannot be opened
  std::optional<TarnoStoredMacStatus> status;  ///< what the tile shows; nothing for "No status"
  std::string fault;  ///< why the store, or the record in it, cannot be read, without a full stop
};

/// The state of this moment, judged for freshness at `now`.
SharedStatus readSharedStatus(tarno::Date now);

/// Whether there is a report, its age is known and it is not stale.
bool isFresh(const std::optional<TarnoStoredMacStatus>& status);

/// What the tile says, for other programs. Each value is safe to read alone: none passes a stale status off
/// as current.
struct TileReport {
  std::string status;  ///< the raw value of resolvedStatus(); "unknown" where there is no report
  std::string statusLine, detailLine, presence, device;
  bool isStale;
  std::optional<std::int64_t> ageSeconds;
  std::optional<tarno::Date> receivedAt;
};

TileReport tileReport(const std::optional<TarnoStoredMacStatus>& stored);

}  // namespace status
