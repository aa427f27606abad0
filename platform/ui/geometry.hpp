#pragma once

#include <algorithm>
#include <limits>

/// Geometry in points, x to the right and y downwards.
namespace ui {

inline constexpr double infinity = std::numeric_limits<double>::infinity();

/// The maximum of every length in points that a view or a container asks for.
inline constexpr double longestLength = 10'000;

/// Returns `value` limited to the range from `low` to `high`; a NaN counts as 0.
constexpr double bounded(double value, double low, double high) {
  return std::clamp(value == value ? value : 0, low, high);
}

struct Point {
  double x = 0;
  double y = 0;

  friend bool operator==(const Point&, const Point&) = default;
};

struct Size {
  double width = 0;
  double height = 0;

  friend bool operator==(const Size&, const Size&) = default;
};

struct Rect {
  Point origin;
  Size size;

  constexpr Point center() const { return {origin.x + size.width / 2, origin.y + size.height / 2}; }
  constexpr double right() const { return origin.x + size.width; }
  constexpr double bottom() const { return origin.y + size.height; }
  /// Returns the rectangle without `margin` on every side; empty if it is too small for that.
  constexpr Rect inset(double margin) const {
    return {{origin.x + margin, origin.y + margin},
            {std::max(size.width - 2 * margin, 0.0), std::max(size.height - 2 * margin, 0.0)}};
  }

  friend bool operator==(const Rect&, const Rect&) = default;
};

/// The horizontal position of the children of a vertical stack, or of the content of a frame.
enum class HorizontalAlignment { leading, center };

/// The vertical position of the children of a horizontal stack.
enum class VerticalAlignment { center };

/// The type of `center`, which is the middle along either axis.
struct Center {
  constexpr operator HorizontalAlignment() const { return HorizontalAlignment::center; }
  constexpr operator VerticalAlignment() const { return VerticalAlignment::center; }
};

inline constexpr Center center;
inline constexpr HorizontalAlignment leading = HorizontalAlignment::leading;

}  // namespace ui
