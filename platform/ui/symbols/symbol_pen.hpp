#pragma once

#include <vector>

#include "tarno/ui/path.hpp"
#include "tarno/ui/symbols/symbol.hpp"

/// Functions to draw symbols with. Lengths are in grid units, 20 per em, from the centre of the symbol's box;
/// y points downwards. Any thread.
namespace ui::symbol_pen {

/// The usual width of the lines in symbols, which makes them look bold.
inline constexpr double weight = 2.5;

/// A sequence of arcs, each joined to the next by a straight line; an arc of radius 0 is a point. In this
/// form every line is easy to offset and to reverse.
using Arcs = std::vector<Path::Arc>;

struct GuideCircle {
  Point center;
  double radius;

  /// Returns the point on the circle at `angle`, clockwise from 3 o'clock.
  Point at(Angle angle) const;
  Path::Arc clockwise(Angle from, Angle to) const;
  Path::Arc counterclockwise(Angle from, Angle to) const;
  // Return the angles at which this circle, followed clockwise, enters and leaves `other`. They must
  // intersect.
  Angle entering(const GuideCircle& other) const;
  Angle leaving(const GuideCircle& other) const;
};

// These functions return closed outlines, clockwise on the screen.

Arcs disc(const GuideCircle& circle);
Arcs roundedRect(const Rect& rect, double radius);
/// Rounds every corner with `radius`, including those that point inwards.
Arcs polygon(const std::vector<Point>& corners, double radius);
/// Draws a line with round ends along `course`. The radius of each bend must be at least half of `width`.
Arcs stroke(const Arcs& course, double width);
Arcs line(Point from, Point to, double width);

/// Returns an open course through `points`, whose corners are rounded with `radius`.
Arcs course(const std::vector<Point>& points, double radius);

/// Combines solids and holes into one outline for the nonzero rule. Solids may overlap. A hole removes one
/// solid; where two overlap, the second stays: this is how a clock has hands inside its ring. Holes must not
/// overlap each other or extend beyond the solids, because such parts would be filled.
Path compose(const std::vector<Arcs>& solids, const std::vector<Arcs>& holes = {});

/// Returns `drawing` as the symbol `name`, which takes up `box`, in grid units.
Symbol symbol(std::string_view name, Size box, const Path& drawing);

}  // namespace ui::symbol_pen
