#include "ui/symbols/symbol.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "ui/path_bounds.hpp"

namespace ui {
namespace {

/// How often the outline, which the symbols draw with lines and arcs only, runs clockwise around `point`.
int winding(const Path& path, Point point) {
  int crossings = 0;
  Point start, last;
  const auto lineTo = [&](Point to) {
    const double side = (to.x - last.x) * (point.y - last.y) - (to.y - last.y) * (point.x - last.x);
    if (last.y <= point.y && to.y > point.y && side > 0) ++crossings;
    if (last.y > point.y && to.y <= point.y && side < 0) --crossings;
    last = to;
  };
  for (const auto& element : path.elements) {
    if (const auto* move = std::get_if<Path::Move>(&element)) start = last = move->to;
    if (const auto* line = std::get_if<Path::Line>(&element)) lineTo(line->to);
    if (std::holds_alternative<Path::Close>(element)) lineTo(start);
    if (const auto* arc = std::get_if<Path::Arc>(&element))
      for (int i = 0; i <= 64; ++i)
        lineTo(Rotation{{std::lerp(arc->start.radians, arc->end.radians, i / 64.0)}, arc->center}.apply(
            {arc->center.x + arc->radius, arc->center.y}));
  }
  return crossings;
}

TEST(Symbol, fillsItsBoxAndKeepsItsHolesOpen) {
  // Where each is open, from the centre of its box.
  const std::pair<const char*, Point> cases[] = {{"lock.fill", {0, 0.2}},
                                                 {"lock.open.fill", {0, 0.3}},
                                                 {"lock.rotation", {0, -0.12}},
                                                 {"questionmark.circle.fill", {0, 0.3}},
                                                 {"clock", {0.3, 0}},
                                                 {"clock.badge.exclamationmark", {0.36, 0.23}},
                                                 {"face.smiling", {0, -0.1}},
                                                 {"applewatch", {0, 0.34}},
                                                 {"cursorarrow.motionlines", {-0.3, 0.05}},
                                                 {"person.crop.circle.badge.checkmark", {0.33, 0.39}}};
  for (const auto& [name, hole] : cases) {
    SCOPED_TRACE(name);
    const auto* symbol = findSymbol(name);
    ASSERT_TRUE(symbol);
    const auto [width, height] = symbol->size;
    const Rect ink = bounds(symbol->outline);
    EXPECT_GE(std::min(ink.origin.x, ink.origin.y), -1e-9);
    EXPECT_GE(std::min(width - ink.right(), height - ink.bottom()), -1e-9);
    EXPECT_GT(std::min(ink.size.width / width, ink.size.height / height), 0.75);
    EXPECT_NEAR(ink.center().x, width / 2, 0.06);
    EXPECT_NEAR(ink.center().y, height / 2, 0.05);
    EXPECT_EQ(winding(symbol->outline, {width / 2 + hole.x, height / 2 + hole.y}), 0);
    for (double x = 0.013; x < width; x += 0.03)  // below 0 a hole has turned solid
      for (double y = 0.013; y < height; y += 0.03) ASSERT_GE(winding(symbol->outline, {x, y}), 0);
  }
  EXPECT_EQ(allSymbols().size(), std::size(cases));
}

}  // namespace
}  // namespace ui
