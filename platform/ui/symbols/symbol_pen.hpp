#pragma once

#include <vector>

#include "tarno/ui/path.hpp"
#include "tarno/ui/symbols/symbol.hpp"

/// What the symbols are drawn with. Lengths are grid units, 20 to the em, from the centre of the symbol's
/// box; y points downwards. Everything that a function returns is a value; any thread.
namespace ui::symbol_pen {

/// The width that every symbol of the set draws its lines with: bold.
inline constexpr double weight = 2.5;

/// A run of arcs, each joined to the next by a straight line; an arc of radius 0 is a point. Reading every
/// piece as such a run makes it simple to offset and to reverse.
using Arcs = std::vector<Path::Arc>;

struct GuideCircle {
  Point center;
  double radius;

  /// The point of the circle in direction `angle`.
  Point at(Angle angle) const;
  Path::Arc clockwise(Angle from, Angle to) const;
  Path::Arc counterclockwise(Angle from, Angle to) const;
  /// Where this circle enters and leaves `other`, one that it crosses, when followed clockwise.
  Angle entering(const GuideCircle& other) const;
  Angle leaving(const GuideCircle& other) const;
};

/// Closed outlines, clockwise on the screen.
Arcs disc(const GuideCircle& circle);
Arcs roundedRect(const Rect& rect, double radius);
/// The polygon through `corners`, each bent with `radius`, both the ones that point outwards and the notches.
Arcs polygon(const std::vector<Point>& corners, double radius);
/// A line with round ends along `course`. Bends must have at least half of `width` as their radius.
Arcs stroke(const Arcs& course, double width);
Arcs line(Point from, Point to, double width);

/// An open course through `points`, bent with `radius` between the first and the last.
Arcs course(const std::vector<Point>& points, double radius);

/// One outline for the nonzero rule. Solids may overlap. A hole opens where just one solid lies: a second one
/// there stays, which is how the hands stand inside a clock's ring. Holes must not overlap nor reach beyond
/// the solids, else that part turns solid.
Path compose(const std::vector<Arcs>& solids, const std::vector<Arcs>& holes = {});

/// `drawing` as the symbol `name`, in a box of that many grid units.
Symbol symbol(std::string_view name, Size box, const Path& drawing);

}  // namespace ui::symbol_pen
