#pragma once

#include <optional>

#include "tarno/foundation/date.hpp"
#include "tarno/widgetkit/timeline.hpp"

namespace widgetkit {

/// If a reload date is past or nearer than this, the reload waits this long after the request that named it.
inline constexpr tarno::Date::duration shortestReload = std::chrono::seconds{5};

/// A request that failed is tried again after this long.
inline constexpr tarno::Date::duration retryInterval = std::chrono::seconds{30};

/// When a host asks for the next timeline, after the request that it made at `now` was answered with
/// `answered`, or failed (no value). Always later than `now`, so that no answer keeps a host busy, and never
/// later than tarno::latestDate.
tarno::Date nextRequest(tarno::Date now, const std::optional<TimelineReloadPolicy>& answered);

}  // namespace widgetkit
