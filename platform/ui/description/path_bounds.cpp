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
  }

  Point low_{infinity, infinity};
  Point high_{-infinity, -infinity};
};

}  // namespace

Rect bounds(const Path& path) {
  Extent extent;
  for (const auto& element : path.elements) std::visit(extent, element);
  return extent.rect();
}

}  // namespace ui
