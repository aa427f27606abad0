#include "widgetkit/reload_schedule.hpp"

#include <algorithm>

namespace widgetkit {

foundation::Date nextRequest(foundation::Date now, const std::optional<TimelineReloadPolicy>& answered) {
  if (!answered) return now + retryInterval;
  return std::max(std::min(answered->date(), foundation::latestDate), now + shortestReload);
}

}  // namespace widgetkit
