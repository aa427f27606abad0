#include "tarno/ui/description/path_bounds.hpp"

#include <algorithm>
#include <cmath>

namespace ui {
namespace {

class Extent {
 public:
  void operator()(const Path::Move& e) { add(e.to); }
  void operator()(const Path::Line& e) { add(e.to); }
  void operator()(const Path::Close&) {}

  void operator()(const Path::Curve& e) {
    const Point from = last_;
    for (const Axis& axis : {horizontalAxis, verticalAxis}) {
      const double p0 = from.*axis.position;
      const double p1 = e.control1.*axis.position;
      const double p2 = e.control2.*axis.position;
      const double p3 = e.to.*axis.position;
      addTurns(from, e, p3 - 3 * p2 + 3 * p1 - p0, 2 * (p2 - 2 * p1 + p0), p1 - p0);
    }
    add(e.to);
  }

  void operator()(const Path::Arc& e) {
    constexpr double quarter = std::numbers::pi / 2;
    const auto at = [&e](double angle) {
      return Point{e.center.x + e.radius * std::cos(angle), e.center.y + e.radius * std::sin(angle)};
    };
    const auto [low, high] = std::minmax(e.start.radians, e.end.radians);
    add(at(e.start.radians));
    const double firstTurn = std::ceil(low / quarter);
    for (int i = 0; i < 4 && (firstTurn + i) * quarter < high; ++i) add(at((firstTurn + i) * quarter));
    add(at(e.end.radians));
  }

  Rect rect() const {
    if (low_.x > high_.x) return {};
    return {low_, {high_.x - low_.x, high_.y - low_.y}};
  }

 private:
  void add(Point point) {
    low_ = {std::min(low_.x, point.x), std::min(low_.y, point.y)};
    high_ = {std::max(high_.x, point.x), std::max(high_.y, point.y)};
    last_ = point;
  }

  /// Adds the points of `curve` where a·t² + b·t + c, the slope along one axis, is zero.
  void addTurns(Point from, const Path::Curve& curve, double a, double b, double c) {
    const auto addAt = [&](double t) {
      if (!(t > 0 && t < 1)) return;
      const double s = 1 - t;
      const auto along = [&](double Point::*axis) {
        return s * s * s * from.*axis + 3 * s * s * t * curve.control1.*axis +
               3 * s * t * t * curve.control2.*axis + t * t * t * curve.to.*axis;
      };
      add({along(&Point::x), along(&Point::y)});
    };
    const double root = std::sqrt(b * b - 4 * a * c);
    if (std::abs(a) < 1e-12) {
      addAt(b == 0 ? 0 : -c / b);
    } else if (!std::isnan(root)) {
      addAt((-b + root) / (2 * a));
      addAt((-b - root) / (2 * a));
    }
  }

  Point low_{infinity, infinity};
  Point high_{-infinity, -infinity};
  Point last_;
};

}  // namespace

Rect bounds(const Path& path) {
  Extent extent;
  for (const auto& element : path.elements) std::visit(extent, element);
  return extent.rect();
}

}  // namespace ui
