#include "icon.hpp"

#include <cmath>

#include "tarno/ui/symbols/symbol.hpp"
#include "tarno/widget/style/widget_style.hpp"

namespace icon {
namespace {

using namespace ui;
using namespace TarnoMacWidgetStyle;

/// The smallest icon, in pixels, that has space for the ring around the lock.
constexpr int smallestWithRing = 32;

// The arc of a locked Mac, as on the tile, with the gap from 6 to 9 o'clock.
constexpr Angle gapEnd = Angle::degrees(154.8);
constexpr double arcTurns = 0.84;

/// Returns the lock, centred, with a font size of at least `leastSize`. An even size keeps its shackle sharp.
FillPath lock(double leastSize, Point center) {
  const double size = 2 * std::ceil(leastSize / 2);
  const Symbol& symbol = *findSymbol("lock.fill");
  const Point corner{center.x - symbol.size.width * size / 2, center.y - symbol.size.height * size / 2};
  return {symbol.outline.placed(size, corner), white, center};
}

}  // namespace

Scene scene(int side) {
  const double margin = std::round(side / 16.0);
  const double card = side - 2 * margin;
  const Point center{side / 2.0, side / 2.0};
  Scene scene{{2 * center.x, 2 * center.y}, {}, {}};
  scene.items.push_back(FillPath{Path::roundedRect({{margin, margin}, {card, card}}, card / 4), teal});
  if (side < smallestWithRing) {
    scene.items.push_back(lock(0.6 * card, center));
    return scene;
  }
  const double radius = 0.36 * card;
  const Rect box{{center.x - radius, center.y - radius}, {2 * radius, 2 * radius}};
  const StrokeStyle track{.lineWidth = 0.085 * card};
  const StrokeStyle arc{.lineWidth = track.lineWidth, .lineCap = LineCap::round};
  scene.items.push_back(StrokePath{Path::circle(box), track, tealDark});
  scene.items.push_back(StrokePath{Path::circle(box, 0, arcTurns).rotated({gapEnd, center}), arc, white});
  scene.items.push_back(lock(0.32 * card, center));
  return scene;
}

}  // namespace icon
