#pragma once

#include <algorithm>
#include <limits>
#include <optional>

/// Geometry in points, x to the right and y downwards.
namespace ui {

inline constexpr double infinity = std::numeric_limits<double>::infinity();

/// No length that a view or a container asks for is longer than this, in points.
inline constexpr double longestLength = 10'000;

/// `value` kept within `low` to `high`, 0 in place of a NaN.
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
  /// Smaller by `margin` on every side, never below nothing.
  constexpr Rect inset(double margin) const {
    return {{origin.x + margin, origin.y + margin},
            {std::max(size.width - 2 * margin, 0.0), std::max(size.height - 2 * margin, 0.0)}};
  }

  friend bool operator==(const Rect&, const Rect&) = default;
};

/// What a parent offers a child: a length on each axis, infinity for "as much as you like", or nothing for
/// "your own ideal size".
struct ProposedSize {
  std::optional<double> width;
  std::optional<double> height;

  friend bool operator==(const ProposedSize&, const ProposedSize&) = default;
};

/// One of the two directions, for rules that are the same along both.
struct Axis {
  double Size::*length;
  std::optional<double> ProposedSize::*offer;
  double Point::*position;
};

inline constexpr Axis horizontalAxis{&Size::width, &ProposedSize::width, &Point::x};
inline constexpr Axis verticalAxis{&Size::height, &ProposedSize::height, &Point::y};

/// Where a child stands in a wider parent: 0 at the leading (left) edge, 1 at the trailing one.
struct HorizontalAlignment {
  double fraction = 0.5;

  friend bool operator==(const HorizontalAlignment&, const HorizontalAlignment&) = default;
};

/// Where a child stands in a higher parent: 0 at the top, 1 at the bottom.
struct VerticalAlignment {
  double fraction = 0.5;

  friend bool operator==(const VerticalAlignment&, const VerticalAlignment&) = default;
};

struct Alignment {
  HorizontalAlignment horizontal;
  VerticalAlignment vertical;

  friend bool operator==(const Alignment&, const Alignment&) = default;
};

/// The names that alignments go by in a view. Each converts only to the axes that it speaks of, so that
/// `.alignment = leading` does not compile for a horizontal stack.
namespace alignment_names {

struct Center {
  constexpr operator HorizontalAlignment() const { return {0.5}; }
  constexpr operator VerticalAlignment() const { return {0.5}; }
  constexpr operator Alignment() const { return {}; }
};

struct Horizontal {
  double fraction;
  constexpr operator HorizontalAlignment() const { return {fraction}; }
  constexpr operator Alignment() const { return {{fraction}, {}}; }
};

struct Vertical {
  double fraction;
  constexpr operator VerticalAlignment() const { return {fraction}; }
  constexpr operator Alignment() const { return {{}, {fraction}}; }
};

}  // namespace alignment_names

inline constexpr alignment_names::Center center;
inline constexpr alignment_names::Horizontal leading{0};
inline constexpr alignment_names::Horizontal trailing{1};
inline constexpr alignment_names::Vertical top{0};
inline constexpr alignment_names::Vertical bottom{1};

}  // namespace ui
