#include "tarno/tarno-desktop/placement.hpp"

#include <algorithm>
#include <cmath>

namespace desktop {

const Monitor* MonitorChoice::among(const std::vector<Monitor>& monitors) {
  auto found = std::ranges::find(monitors, connector_.value_or(""), &Monitor::connector);
  wasThere_ = wasThere_ || !connector_ || found != monitors.end();
  if (found == monitors.end() && wasThere_)
    found = std::ranges::max_element(monitors, {}, &Monitor::isPrimary);
  return found == monitors.end() ? nullptr : &*found;
}

static int placeOnAxis(int start, int room, int length, double fraction, int before, int after) {
  const int margin = fraction == 0 ? before : fraction == 1 ? -after : 0;
  return start + std::max(0, static_cast<int>(std::lround(margin + fraction * (room - length))));
}

Area place(int width, int height, const Area& room, const Anchor& anchor, const Margin& margin) {
  const auto& [top, right, bottom, left] = margin;
  return {placeOnAxis(room.x, room.width, width, anchor.x, left, right),
          placeOnAxis(room.y, room.height, height, anchor.y, top, bottom), width, height};
}

}  // namespace desktop
