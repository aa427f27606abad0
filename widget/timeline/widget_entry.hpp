#pragma once

#include <optional>

#include "tarno/foundation/date.hpp"
#include "tarno/shared/model/status_snapshot.hpp"

/// Everything that is needed to draw a tile at one moment.
struct TarnoMacWidgetEntry {
  tarno::Date date;                              ///< the moment that the entry is for
  std::optional<TarnoMacStatusSnapshot> status;  ///< the last report; absent when there is none
  std::optional<tarno::Date> lastRefresh;        ///< when that report was received; absent if unknown

  /// A locked Mac with all presence signals, for galleries. Each call builds a new entry and reads the clock
  /// once for each of its three dates.
  static TarnoMacWidgetEntry placeholder();

  friend bool operator==(const TarnoMacWidgetEntry&, const TarnoMacWidgetEntry&) = default;
};
