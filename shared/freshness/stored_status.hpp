#pragma once

#include <optional>

#include "tarno/foundation/date.hpp"
#include "tarno/shared/model/status_snapshot.hpp"

/// What loading hands out: a status report and the local moment at which it was received, where that is
/// known.
struct TarnoStoredMacStatus {
  TarnoMacStatusSnapshot snapshot;
  std::optional<tarno::Date> receivedAt;

  bool operator==(const TarnoStoredMacStatus&) const = default;
};
