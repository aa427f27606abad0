#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "tarno/foundation/date.hpp"
#include "tarno/foundation/user_defaults.hpp"
#include "tarno/shared/freshness/stored_status.hpp"

namespace status {

/// The content of the shared store, read as the widget reads it. If there is neither a status nor a fault,
/// nothing is stored.
struct SharedStatus {
  std::shared_ptr<tarno::UserDefaults> store;  ///< null if the store cannot be opened
  std::optional<TarnoStoredMacStatus> status;  ///< what the tile shows; absent for "No status"
  std::string fault;  ///< why the store or the record cannot be read, without a full stop
};

/// Reads the store and judges the report for freshness at `now`.
SharedStatus readSharedStatus(tarno::Date now);

/// Returns whether there is a report of a known age that is not stale.
bool isFresh(const std::optional<TarnoStoredMacStatus>& status);

/// The texts of the tile, for other programs. Each value can be used alone, because none makes a stale status
/// look current.
struct TileReport {
  std::string status;  ///< the raw value of resolvedStatus(); "unknown" if there is no report
  std::string statusLine, detailLine, presence, device;
  bool isStale;
  std::optional<std::int64_t> ageSeconds;
  std::optional<tarno::Date> receivedAt;
};

TileReport tileReport(const std::optional<TarnoStoredMacStatus>& stored);

}  // namespace status
