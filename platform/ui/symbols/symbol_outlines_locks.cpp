#include "ui/symbols/symbol_outlines.hpp"
#include "ui/symbols/symbol_pen.hpp"

namespace ui::symbol_outlines {
namespace {

using namespace symbol_pen;

/// The legs of a shackle, as far as they reach below the centre of its arch.
struct Legs {
  double left;
  double right;
};

/// The shackle of a padlock, turned as a whole.
Arcs shackle(const Circle& arch, Legs legs, double width, const Rotation& turn = {}) {
  const double left = arch.center.x - arch.radius;
  const double right = arch.center.x + arch.radius;
  const double y = arch.center.y;
  Arcs way{course({{left, y + legs.left}, {left, y}}, 0).front(),
           arch.clockwise(Angle::degrees(180), Angle::degrees(360)),
           course({{right, y}, {right, y + legs.right}}, 0).back()};
  for (auto& arc : way)
    arc = {turn.apply(arc.center),
           arc.radius,
           {arc.start.radians + turn.angle.radians},
           {arc.end.radians + turn.angle.radians}};
  return stroke(way, width);
}

Arcs body(Point top) { return roundedRect({{top.x - 9, top.y}, {18, 13}}, 3); }

Arcs keyhole(Point top) { return line({top.x, top.y + 5.2}, {top.x, top.y + 7.9}, weight); }

/// The head of an arrow that follows `way` clockwise; its back stands at angle `back`.
Arcs arrowhead(const Circle& way, Angle back) {
  const Point base = way.at(back);
  const Rotation turn{back, base};
  return polygon({turn.apply({base.x + 3.9, base.y - 0.6}), turn.apply({base.x - 0.3, base.y + 5.8}),
                  turn.apply({base.x - 3.9, base.y - 0.6})},
                 1);
}

}  // namespace

Symbol lock() {
  const Point top{0, -1.6};
  return symbol("lock.fill", {19, 24},
                compose({body(top), shackle({{0, -5.5}, 4.75}, {5, 5}, weight)}, {keyhole(top)}));
}

Symbol openLock() {
  const Point top{-0.2, -0.7};
  const Circle arch{{top.x - 0.2, top.y - 3.9}, 4.8};
  const Rotation turn{Angle::degrees(24), {arch.center.x + arch.radius, top.y}};
  return symbol("lock.open.fill", {20, 25},
                compose({body(top), shackle(arch, {3.9, 5}, weight, turn)}, {keyhole(top)}));
}

Symbol turningLock() {
  const Circle way{{0, 0}, 10.4};
  const Angle back = Angle::degrees(-52);
  return symbol(
      "lock.rotation", {24, 24},
      compose({stroke({way.clockwise(Angle::degrees(8), back)}, 2.2), arrowhead(way, back),
               roundedRect({{-5.4, -1.1}, {10.8, 7.5}}, 1.5), shackle({{0, -2.9}, 2.95}, {3, 3}, 1.9)}));
}

}  // namespace ui::symbol_outlines
