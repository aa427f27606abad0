#pragma once

#include <optional>

#include "foundation/date.hpp"
#include "widgetkit/timeline.hpp"

namespace widgetkit {

/// If a reload date is past or nearer than this, the reload waits this long after the request that named it.
inline constexpr foundation::Date::duration shortestReload = std::chrono::seconds{5};

/// A request that failed is tried again after this long.
inline constexpr foundation::Date::duration retryInterval = std::chrono::seconds{30};

/// When a host asks for the next timeline, after the request that it made at `now` was answered with
/// `answered`, or failed (no value). Always later than `now`, so that no answer keeps a host busy, and never
/// later than foundation::latestDate.
foundation::Date nextRequest(foundation::Date now, const std::optional<TimelineReloadPolicy>& answered);

}  // namespace widgetkit
