#include "tarno/ui/symbols/symbol_pen.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace ui::symbol_pen {
namespace {

constexpr double pi = std::numbers::pi;
constexpr double unitsPerEm = 20;

Point polar(Point center, double radius, double angle) {
  return {center.x + radius * std::cos(angle), center.y + radius * std::sin(angle)};
}

double direction(Point from, Point to) { return std::atan2(to.y - from.y, to.x - from.x); }

Point startOf(const Path::Arc& arc) { return polar(arc.center, arc.radius, arc.start.radians); }
Point endOf(const Path::Arc& arc) { return polar(arc.center, arc.radius, arc.end.radians); }

/// Returns the end of a course at `point`, as an arc of radius 0. The arc keeps the direction of the course,
/// which offset() needs.
Path::Arc tip(Point point, double heading) { return {point, 0, {heading - pi / 2}, {heading - pi / 2}}; }

/// Returns the arc that rounds `corner` on the way from `before` to `after`.
Path::Arc bend(Point before, Point corner, Point after, double radius) {
  const double in = direction(before, corner);
  const double turn = std::remainder(direction(corner, after) - in, 2 * pi);
  const double side = turn > 0 ? 1 : -1;
  const double reach = radius / std::cos(turn / 2);
  const Point center = polar(corner, reach, in + turn / 2 + side * pi / 2);
  const double start = in - side * pi / 2;
  return {center, radius, {start}, {start + turn}};
}

/// Returns the parallel of `arc` at `distance` to its left, seen in the direction in which it runs.
Path::Arc offset(Path::Arc arc, double distance) {
  const bool clockwise = arc.end.radians >= arc.start.radians;
  arc.radius += clockwise ? distance : -distance;
  if (arc.radius >= 0) return arc;
  return {arc.center, -arc.radius, {arc.start.radians + pi}, {arc.end.radians + pi}};
}

/// Returns `angle` without its whole turns: from 0 to 2 pi.
double withinTurn(double angle) { return angle - 2 * pi * std::floor(angle / (2 * pi)); }

/// Returns half of the angle of the part of `circle` that is inside `other`.
double halfSpan(const GuideCircle& circle, const GuideCircle& other) {
  const double apart = std::hypot(other.center.x - circle.center.x, other.center.y - circle.center.y);
  const double r = circle.radius;
  return std::acos(
      std::clamp((r * r + apart * apart - other.radius * other.radius) / (2 * r * apart), -1.0, 1.0));
}

Arcs reversed(Arcs arcs) {
  std::reverse(arcs.begin(), arcs.end());
  for (auto& arc : arcs) std::swap(arc.start, arc.end);
  return arcs;
}

void append(Path& path, const Arcs& outline) {
  path.elements.emplace_back(Path::Move{startOf(outline.front())});
  for (const auto& arc : outline) {
    if (arc.radius > 0 && arc.start != arc.end)
      path.elements.emplace_back(arc);
    else
      path.elements.emplace_back(Path::Line{startOf(arc)});
  }
  path.elements.emplace_back(Path::Close{});
}

}  // namespace

Arcs disc(const GuideCircle& circle) { return {{circle.center, circle.radius, {0}, {2 * pi}}}; }

Arcs roundedRect(const Rect& rect, double radius) {
  return polygon({rect.origin,
                  {rect.right(), rect.origin.y},
                  {rect.right(), rect.bottom()},
                  {rect.origin.x, rect.bottom()}},
                 radius);
}

Arcs polygon(const std::vector<Point>& corners, double radius) {
  Arcs outline;
  const std::size_t count = corners.size();
  for (std::size_t i = 0; i < count; ++i)
    outline.push_back(bend(corners[(i + count - 1) % count], corners[i], corners[(i + 1) % count], radius));
  return outline;
}

Arcs stroke(const Arcs& course, double width) {
  const double half = width / 2;
  Arcs outline;
  Arcs back;
  for (const auto& arc : course) {
    outline.push_back(offset(arc, half));
    back.push_back(offset(arc, -half));
  }
  back = reversed(back);
  const auto cap = [half](Point center, Point from) {
    const double start = direction(center, from);
    return Path::Arc{center, half, {start}, {start + pi}};
  };
  outline.push_back(cap(endOf(course.back()), endOf(outline.back())));
  outline.insert(outline.end(), back.begin(), back.end());
  outline.push_back(cap(startOf(course.front()), endOf(outline.back())));
  return outline;
}

Arcs line(Point from, Point to, double width) { return stroke(course({from, to}, 0), width); }

Arcs course(const std::vector<Point>& points, double radius) {
  Arcs result{tip(points.front(), direction(points[0], points[1]))};
  for (std::size_t i = 1; i + 1 < points.size(); ++i)
    result.push_back(bend(points[i - 1], points[i], points[i + 1], radius));
  result.push_back(tip(points.back(), direction(points[points.size() - 2], points.back())));
  return result;
}

Point GuideCircle::at(Angle angle) const { return polar(center, radius, angle.radians); }

Path::Arc GuideCircle::clockwise(Angle from, Angle to) const {
  return {center, radius, from, {from.radians + withinTurn(to.radians - from.radians)}};
}

Path::Arc GuideCircle::counterclockwise(Angle from, Angle to) const {
  return {center, radius, from, {from.radians - withinTurn(from.radians - to.radians)}};
}

Angle GuideCircle::entering(const GuideCircle& other) const {
  return {direction(center, other.center) - halfSpan(*this, other)};
}

Angle GuideCircle::leaving(const GuideCircle& other) const {
  return {direction(center, other.center) + halfSpan(*this, other)};
}

Path compose(const std::vector<Arcs>& solids, const std::vector<Arcs>& holes) {
  Path path;
  for (const auto& solid : solids) append(path, solid);
  for (const auto& hole : holes) append(path, reversed(hole));
  return path;
}

Symbol symbol(std::string_view name, Size box, const Path& drawing) {
  const Size size{box.width / unitsPerEm, box.height / unitsPerEm};
  return {name, size, drawing.placed(1 / unitsPerEm, {size.width / 2, size.height / 2})};
}

}  // namespace ui::symbol_pen
