#include "tarno/widgetkit/reload_schedule.hpp"

#include <algorithm>

namespace widgetkit {

tarno::Date nextRequest(tarno::Date now, const std::optional<TimelineReloadPolicy>& answered) {
  if (!answered) return now + retryInterval;
  return std::max(std::min(answered->date(), tarno::latestDate), now + shortestReload);
}

}  // namespace widgetkit
