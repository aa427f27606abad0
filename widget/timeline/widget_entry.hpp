#pragma once

#include <optional>

#include "tarno/foundation/date.hpp"
#include "tarno/shared/model/status_snapshot.hpp"

/// Everything that is needed to draw a tile at one moment.
struct TarnoMacWidgetEntry {
  tarno::Date date;                              ///< the moment that the entry is for
  std::optional<TarnoMacStatusSnapshot> status;  ///< the last report; absent when there is none
  std::optional<tarno::Date> lastRefresh;        ///< when that report was received; absent if unknown

  /// Returns a sample entry for galleries: a locked Mac with all presence signals. Each of its three dates is
  /// the time at which it is set.
  static TarnoMacWidgetEntry placeholder();

  friend bool operator==(const TarnoMacWidgetEntry&, const TarnoMacWidgetEntry&) = default;
};
