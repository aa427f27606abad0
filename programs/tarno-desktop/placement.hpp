#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ui/geometry.hpp"

namespace desktop {

/// A rectangle of the desktop, in whole points, x to the right and y downwards.
struct Area {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;

  friend bool operator==(const Area&, const Area&) = default;
};

/// The nine places that a tile can be anchored to, as a command line names them: "top-left", "top" …
/// "bottom-right".
const std::vector<std::string>& anchorNames();

/// Nothing for any other word.
std::optional<ui::Alignment> anchorNamed(std::string_view name);

/// Where a tile of `size` stands in `room`: `margin` away from the edges that it is anchored to, in the
/// middle of an axis that it is not anchored on. A tile that does not fit keeps its left and top edge in the
/// room.
Area place(ui::Size size, const Area& room, const ui::Alignment& anchor, int margin);

}  // namespace desktop
