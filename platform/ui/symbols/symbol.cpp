#include "tarno/ui/symbols/symbol.hpp"

#include <algorithm>
#include <cmath>

#include "tarno/ui/symbols/symbol_pen.hpp"

namespace ui {
namespace {

using namespace symbol_pen;

/// The height of all status symbols. It is the same for all, so that nothing below them moves when the status
/// changes.
constexpr double statusHeight = 25;

// The locks.

/// The lengths of the legs of a shackle below the centre of its arch.
struct Legs {
  double left;
  double right;
};

/// Returns the shackle of a padlock, rotated by `turn`.
Arcs shackle(const GuideCircle& arch, Legs legs, double width, const Rotation& turn = {}) {
  const double left = arch.center.x - arch.radius;
  const double right = arch.center.x + arch.radius;
  const double y = arch.center.y;
  Arcs legsAndArch{course({{left, y + legs.left}, {left, y}}, 0).front(),
                   arch.clockwise(Angle::degrees(180), Angle::degrees(360)),
                   course({{right, y}, {right, y + legs.right}}, 0).back()};
  for (auto& arc : legsAndArch)
    arc = {turn.apply(arc.center),
           arc.radius,
           {arc.start.radians + turn.angle.radians},
           {arc.end.radians + turn.angle.radians}};
  return stroke(legsAndArch, width);
}

Arcs body(Point top) { return roundedRect({{top.x - 9, top.y}, {18, 13}}, 3); }

Arcs keyhole(Point top) { return line({top.x, top.y + 5.2}, {top.x, top.y + 7.9}, weight); }

/// Returns the head of an arrow that points clockwise along `ring`; the back of the head is at the angle
/// `back`.
Arcs arrowhead(const GuideCircle& ring, Angle back) {
  const Point base = ring.at(back);
  const Rotation turn{back, base};
  return polygon({turn.apply({base.x + 3.9, base.y - 0.6}), turn.apply({base.x - 0.3, base.y + 5.8}),
                  turn.apply({base.x - 3.9, base.y - 0.6})},
                 1);
}

Symbol lock() {
  const Point top{0, -1.6};
  return symbol("lock.fill", {19, statusHeight},
                compose({body(top), shackle({{0, -5.5}, 4.75}, {5, 5}, weight)}, {keyhole(top)}));
}

Symbol openLock() {
  const Point top{-0.2, -0.7};
  const GuideCircle arch{{top.x - 0.2, top.y - 3.9}, 4.8};
  const Rotation turn{Angle::degrees(24), {arch.center.x + arch.radius, top.y}};
  return symbol("lock.open.fill", {20, statusHeight},
                compose({body(top), shackle(arch, {3.9, 5}, weight, turn)}, {keyhole(top)}));
}

Symbol turningLock() {
  const GuideCircle ring{{0, 0}, 10.4};
  const Angle back = Angle::degrees(-52);
  return symbol(
      "lock.rotation", {24, statusHeight},
      compose({stroke({ring.clockwise(Angle::degrees(8), back)}, 2.2), arrowhead(ring, back),
               roundedRect({{-5.4, -1.1}, {10.8, 7.5}}, 1.5), shackle({{0, -2.9}, 2.95}, {3, 3}, 1.9)}));
}

// The round symbols, and those with a badge.

/// Returns the inner edge of the ring whose outer edge is `rim`.
GuideCircle inside(const GuideCircle& rim) { return {rim.center, rim.radius - weight}; }

/// Returns the hands of a clock at eight o'clock, which leaves the lower right free for a badge.
Arcs hands(Point pivot, double minute, double hour) {
  const Point tip = GuideCircle{pivot, hour}.at(Angle::degrees(150));
  return stroke(course({{pivot.x, pivot.y - minute}, pivot, tip}, weight / 2), weight);
}

// The parts that the symbols with a badge at the lower right share: the badge, the gap around it, the circle
// on which the ends of the ring are centred, and the ring itself.
constexpr GuideCircle badge{{7.2, 6}, 5.8};
constexpr GuideCircle margin{badge.center, badge.radius + 1.7};
constexpr GuideCircle reach{badge.center, margin.radius + weight / 2};
constexpr GuideCircle frame{{-1.6, -0.6}, 10};
constexpr Size badgedBox{26.5, 24};
constexpr double badgeWeight = 1.9;

Arcs ringWithRoomForBadge() {
  return stroke({frame.clockwise(frame.leaving(reach), frame.entering(reach))}, weight);
}

constexpr GuideCircle rim{{0, 0}, 11.6};
constexpr Size rimBox{24, 24};

Symbol question() {
  const GuideCircle bow{{0, -3.9}, 3.3};
  const Angle turn = Angle::degrees(64);
  // The neck bends the other way, so that the bow of the question mark ends on its axis and points down.
  const double bend = bow.radius * std::cos(turn.radians) / (1 - std::cos(turn.radians));
  const GuideCircle neck{{bend, bow.center.y + (bow.radius + bend) * std::sin(turn.radians)}, bend};
  const Arcs mark = stroke({bow.clockwise(Angle::degrees(-175), turn),
                            neck.counterclockwise(Angle::degrees(64 + 180), Angle::degrees(180))},
                           weight);
  return symbol("questionmark.circle.fill", {rimBox.width, statusHeight},
                compose({disc(rim)}, {mark, disc({{0, 6.1}, 1.6})}));
}

Symbol clock() {
  return symbol("clock", rimBox, compose({disc(rim), hands({0.6, 0.4}, 6, 4.9)}, {disc(inside(rim))}));
}

Symbol clockWithAlarm() {
  const double x = badge.center.x;
  return symbol("clock.badge.exclamationmark", {badgedBox.width, statusHeight},
                compose({ringWithRoomForBadge(), hands({-2.2, -0.8}, 5, 3.8), disc(badge)},
                        {line({x, 3.2}, {x, 6}, badgeWeight), disc({{x, 8.9}, 1.1})}));
}

Symbol personWithCheckMark() {
  const GuideCircle head{{frame.center.x, -3.9}, 3.4};
  const GuideCircle shoulders{{frame.center.x, 9.2}, 7};
  // The bust follows the edge of the badge's margin and continues on the round end of the ring, where they
  // touch.
  const Arcs bust{shoulders.clockwise(shoulders.entering(frame), shoulders.entering(margin)),
                  margin.counterclockwise(margin.leaving(shoulders), reach.entering(frame)),
                  frame.clockwise(frame.leaving(reach), frame.leaving(shoulders))};
  const Arcs check = stroke(course({{4.6, 6.2}, {6.6, 8.2}, {9.8, 4.2}}, badgeWeight / 2), badgeWeight);
  return symbol("person.crop.circle.badge.checkmark", badgedBox,
                compose({ringWithRoomForBadge(), disc(head), bust, disc(badge)}, {check}));
}

// The symbols in the dots of the dial are shown at 8 points, where 2.5 units are one pixel. Their edges are
// on multiples of 2.5 where the shape allows it.

Symbol smile() {
  const GuideCircle face{{0, 0}, 12.5};
  const GuideCircle mouth{{0, 1}, 5.25};
  return symbol("face.smiling", {25, 25},
                compose({disc(face), disc({{-3.75, -3.5}, 1.7}), disc({{3.75, -3.5}, 1.7}),
                         stroke({mouth.counterclockwise(Angle::degrees(160), Angle::degrees(20))}, weight)},
                        {disc(inside(face))}));
}

Symbol watch() {
  const GuideCircle dial{{0, 0}, 10};
  // The inner end of each strap is notched, so that its corners stay under the rim and outside the hole of
  // the dial.
  const Arcs upper = polygon({{-4.6, -12.5}, {4.6, -12.5}, {6.4, -6}, {0, -8.8}, {-6.4, -6}}, 1);
  const Arcs lower = polygon({{4.6, 12.5}, {-4.6, 12.5}, {-6.4, 6}, {0, 8.8}, {6.4, 6}}, 1);
  const Arcs crown = line({10, 0}, {10.9, 0}, weight);
  return symbol(
      "applewatch", {24.5, 25},
      compose({upper, lower, crown, disc(dial), hands({0.6, 0.6}, 4.6, 3.7)}, {disc(inside(dial))}));
}

Symbol movingPointer() {
  const Arcs pointer =
      polygon({{0, -11}, {12.8, 1.6}, {7, 2.2}, {9.8, 8.2}, {6.4, 9.8}, {3.7, 3.8}, {0, 7.6}}, 1.05);
  const auto streak = [](double left, double y) { return line({left, y}, {-3.75, y}, weight); };
  return symbol("cursorarrow.motionlines", {26, 24},
                compose({pointer, streak(-11.25, -6.25), streak(-8.75, -1.25), streak(-11.25, 3.75)}));
}

}  // namespace

const Symbol* findSymbol(std::string_view name) {
  const auto& symbols = allSymbols();
  const auto found =
      std::find_if(symbols.begin(), symbols.end(), [&](const Symbol& s) { return s.name == name; });
  return found == symbols.end() ? nullptr : &*found;
}

const std::vector<Symbol>& allSymbols() {
  static const std::vector<Symbol> symbols{lock(),          openLock(),           turningLock(), question(),
                                           clock(),         clockWithAlarm(),     smile(),       watch(),
                                           movingPointer(), personWithCheckMark()};
  return symbols;
}

}  // namespace ui
