#include "tarno-desktop/placement.hpp"

#include <algorithm>
#include <cmath>

namespace desktop {
namespace {

int placeOnAxis(int start, int room, int length, double fraction, int margin) {
  const int free = room - length;
  return start + std::max(0, static_cast<int>(std::lround(margin + fraction * (free - 2 * margin))));
}

}  // namespace

const std::vector<std::string>& anchorNames() {
  static const std::vector<std::string> names{"top-left", "top",         "top-right", "left",        "center",
                                              "right",    "bottom-left", "bottom",    "bottom-right"};
  return names;
}

std::optional<Anchor> anchorNamed(std::string_view name) {
  const auto& names = anchorNames();
  const auto found = std::find(names.begin(), names.end(), name);
  if (found == names.end()) return std::nullopt;
  const auto row = (found - names.begin()) / 3, column = (found - names.begin()) % 3;
  return Anchor{static_cast<double>(column) / 2, static_cast<double>(row) / 2};
}

Area place(int width, int height, const Area& room, const Anchor& anchor, int margin) {
  return {placeOnAxis(room.x, room.width, width, anchor.x, margin),
          placeOnAxis(room.y, room.height, height, anchor.y, margin), width, height};
}

}  // namespace desktop
