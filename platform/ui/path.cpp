#include "tarno/ui/path.hpp"

#include <algorithm>
#include <cmath>

namespace ui {
namespace {

/// Applies `move` to every point of `path`, adds `turn` to every angle and multiplies every radius by
/// `factor`.
template <class Move>
Path transformed(const Path& path, const Move& move, Angle turn, double factor) {
  Path result;
  result.elements.reserve(path.elements.size());
  struct Visitor {
    const Move& move;
    Angle turn;
    double factor;

    Path::Element operator()(const Path::Move& e) const { return Path::Move{move(e.to)}; }
    Path::Element operator()(const Path::Line& e) const { return Path::Line{move(e.to)}; }
    Path::Element operator()(const Path::Arc& e) const {
      return Path::Arc{move(e.center),
                       e.radius * factor,
                       {e.start.radians + turn.radians},
                       {e.end.radians + turn.radians}};
    }
    Path::Element operator()(const Path::Close& e) const { return e; }
  };
  for (const auto& element : path.elements)
    result.elements.push_back(std::visit(Visitor{move, turn, factor}, element));
  return result;
}

}  // namespace

Point Rotation::apply(Point point) const {
  const double dx = point.x - center.x;
  const double dy = point.y - center.y;
  const double c = std::cos(angle.radians);
  const double s = std::sin(angle.radians);
  return {center.x + dx * c - dy * s, center.y + dx * s + dy * c};
}

Path Path::roundedRect(const Rect& rect, double radius) {
  const double r = std::clamp(radius, 0.0, std::min(rect.size.width, rect.size.height) / 2);
  const auto corner = [r](double x, double y, double start) {
    return Arc{{x, y}, r, Angle::degrees(start), Angle::degrees(start + 90)};
  };
  const double left = rect.origin.x + r;
  const double right = rect.right() - r;
  const double upper = rect.origin.y + r;
  const double lower = rect.bottom() - r;
  return {{Move{{left, rect.origin.y}}, corner(right, upper, -90), corner(right, lower, 0),
           corner(left, lower, 90), corner(left, upper, 180), Close{}}};
}

Path Path::circle(const Rect& rect, double from, double to) {
  const double radius = std::min(rect.size.width, rect.size.height) / 2;
  const auto at = [](double fraction) { return Angle::degrees(360 * fraction); };
  const Arc arc{rect.center(), radius, at(from), at(to)};
  const Point start = Rotation{arc.start, arc.center}.apply({arc.center.x + radius, arc.center.y});
  Path path{{Move{start}, arc}};
  if (to - from >= 1) path.elements.emplace_back(Close{});
  return path;
}

Path Path::placed(double factor, Point offset) const {
  return transformed(
      *this,
      [&](Point p) {
        return Point{p.x * factor + offset.x, p.y * factor + offset.y};
      },
      {}, factor);
}

Path Path::rotated(const Rotation& rotation) const {
  return transformed(
      *this, [&](Point p) { return rotation.apply(p); }, rotation.angle, 1);
}

}  // namespace ui
