#pragma once

#include <numbers>
#include <variant>
#include <vector>

#include "tarno/ui/geometry.hpp"

namespace ui {

/// An angle, clockwise on the screen.
struct Angle {
  double radians = 0;

  static constexpr Angle degrees(double value) { return {value * std::numbers::pi / 180}; }
  constexpr double inDegrees() const { return radians * 180 / std::numbers::pi; }

  friend bool operator==(const Angle&, const Angle&) = default;
};

/// A rotation about a point.
struct Rotation {
  Angle angle;
  Point center;

  Point apply(Point point) const;
};

/// An outline: a sequence of elements, each of which starts at the end of the one before.
struct Path {
  struct Move {
    Point to;
    friend bool operator==(const Move&, const Move&) = default;
  };
  struct Line {
    Point to;
    friend bool operator==(const Line&, const Line&) = default;
  };
  /// A circular arc from `start` to `end`, both measured clockwise from 3 o'clock. It runs clockwise if `end`
  /// is larger than `start`, otherwise counter-clockwise. A line joins it to the element before.
  struct Arc {
    Point center;
    double radius;
    Angle start;
    Angle end;
    friend bool operator==(const Arc&, const Arc&) = default;
  };
  struct Close {
    friend bool operator==(const Close&, const Close&) = default;
  };
  using Element = std::variant<Move, Line, Arc, Close>;

  std::vector<Element> elements;

  /// Returns a rectangle with round corners; the radius is limited to half of the shorter side.
  static Path roundedRect(const Rect& rect, double radius);
  /// Returns the circle inscribed in `rect`, or the part of it between two fractions of its length, measured
  /// clockwise from 3 o'clock. Only the whole circle is closed.
  static Path circle(const Rect& rect, double from = 0, double to = 1);

  /// Returns this outline scaled by `factor` about the origin, then moved by `offset`.
  Path placed(double factor, Point offset) const;
  Path rotated(const Rotation& rotation) const;

  friend bool operator==(const Path&, const Path&) = default;
};

enum class LineCap { butt, round };

/// How a line is drawn: solid, and with mitred joins up to the miter limit 10.
struct StrokeStyle {
  double lineWidth = 1;
  LineCap lineCap = LineCap::butt;

  friend bool operator==(const StrokeStyle&, const StrokeStyle&) = default;
};

}  // namespace ui
