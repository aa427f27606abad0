#include "tarno-desktop/placement.hpp"

#include <algorithm>
#include <cmath>

namespace desktop {

static int placeOnAxis(int start, int room, int length, double fraction, int margin) {
  const int free = room - length;
  return start + std::max(0, static_cast<int>(std::lround(margin + fraction * (free - 2 * margin))));
}

Area place(int width, int height, const Area& room, const Anchor& anchor, int margin) {
  return {placeOnAxis(room.x, room.width, width, anchor.x, margin),
          placeOnAxis(room.y, room.height, height, anchor.y, margin), width, height};
}

}  // namespace desktop
