#pragma once

#include <optional>

#include "tarno/foundation/date.hpp"
#include "tarno/shared/model/status_snapshot.hpp"

/// A loaded status report and, if it is known, the local date of its receipt.
struct TarnoStoredMacStatus {
  TarnoMacStatusSnapshot snapshot;
  std::optional<tarno::Date> receivedAt;

  bool operator==(const TarnoStoredMacStatus&) const = default;
};
