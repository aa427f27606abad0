#pragma once

#include <optional>

#include "ui/geometry.hpp"

namespace ui {

/// One of the two directions of a layout, for rules that are the same along both.
struct Axis {
  double Size::*length;
  std::optional<double> ProposedSize::*offer;
  double Point::*position;
};

inline constexpr Axis horizontalAxis{&Size::width, &ProposedSize::width, &Point::x};
inline constexpr Axis verticalAxis{&Size::height, &ProposedSize::height, &Point::y};

}  // namespace ui
