#include "ui/symbols/symbol.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "ui/description/path_bounds.hpp"

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

/// The symbols side by side, 20 samples a side: ink, blank, or '!' for a hole that has turned solid.
std::string picture(const std::vector<std::string_view>& names) {
  std::string result = "\n";
  for (int row = 0; row < 20; ++row) {
    for (const std::string_view name : names) {
      const Symbol& symbol = *findSymbol(name);
      for (int column = 0; column < 20; ++column) {
        const Point sample{(column + 0.5) / 20 * symbol.size.width, (row + 0.5) / 20 * symbol.size.height};
        const int times = winding(symbol.outline, sample);
        result += times > 0 ? '#' : times == 0 ? ' ' : '!';
      }
      result += '|';
    }
    result += '\n';
  }
  return result;
}

TEST(Symbol, HasItsShape) {
  EXPECT_EQ(picture({"lock.fill", "lock.open.fill", "lock.rotation", "questionmark.circle.fill", "clock"}),
            R"(
         ##         |         #####      |         ##         |        ####        |        ####        |
      ########      |       #########    |      ########  #   |     ##########     |     ##########     |
     ##########     |      ####   ####   |    ####    ######  |    ############    |    #####  #####    |
    ###      ###    |      ###      ##   |   ###        ####  |   #####    #####   |   ###        ###   |
    ###      ###    |     ###       ###  |  ###    ##   ####  |  #####      #####  |  ###     #    ###  |
    ##        ##    |     ##        ###  |  ##    ####  ##### | #####   ##   ##### | ###     ###    ### |
    ##        ##    |    ###        ##   | ##    ##  ##       | #####  ####  ##### | ##      ###     ## |
    ##        ##    |              ###   | ##    #    #       | ###### ####  ##### | ##      ###     ## |
    ##        ##    |              ##    | #     #    #       |##########   #######|###      ###     ###|
 ################## |   #############    |##    ########      |#########    #######|##       ###      ##|
 ################## | #################  |##   ##########   # |#########  #########|##      ###       ##|
 ################## | ################## | #   ##########   # |#########  #########|###   #####      ###|
 ########  ######## | ################## | ##  ##########  ## | ################## | ##   ###        ## |
 ########  ######## | ########  ######## | ##  ##########  ## | ################## | ##              ## |
 ########  ######## | ########  ######## |  ##  ########  ##  | ########  ######## | ###            ### |
 ########  ######## | ########  ######## |  ###          ###  |  #######  #######  |  ###          ###  |
 ################## | ########  ######## |   ###        ###   |   ##############   |   ###        ###   |
 ################## | ################## |    ####    ####    |    ############    |    #####  #####    |
 ################## | #################  |      ########      |     ##########     |     ##########     |
                    |  ###############   |         ##         |        ####        |        ####        |
)");
  EXPECT_EQ(picture({"clock.badge.exclamationmark", "face.smiling", "applewatch", "cursorarrow.motionlines",
                     "person.crop.circle.badge.checkmark"}),
            R"(
      #####         |       ######       |      ########      |                    |      #####         |
    #########       |     ##########     |      ########      |                    |    #########       |
   ####    ###      |   ####      ####   |      ########      |          ##        |   ####    ###      |
  ###        ##     |  ###          ###  |     ##########     |          ###       |  ###        ##     |
  ##    #     ##    |  ##            ##  |    ####    ####    |########  ###       |  ##   ###    ##    |
 ##    ##     ##    | ##              ## |   ###        ###   | #######  ####      | ##   #####   ##    |
 ##    ##      ##   | ##   ##    ##   ## |   ##     #    ##   |          #####     | ##   #####    ##   |
##     ##      ##   |##    ##    ##    ##|  ##     ###    ##  |          ######    |##    #####    ##   |
##     ##       #   |##                ##|  ##     ###    ##  |  ######  #######   |##     ####     #   |
##    ###           |##                ##|  ##     ###    ####|  ######  ########  |##      #           |
##   ###      ###   |##                ##|  ##    ###     ####|          ######### |##            ###   |
##   ##     ######  |##   ##      ##   ##|  ##   ####     ##  |          ########  |##          ######  |
 ##         ### ### |##   ##      ##   ##|  ##   ##       ##  | #######  ######    | ##   ####  ####### |
 ##        #### ####| ##   ##    ##   ## |   ##          ##   |########  ######    | ##  ##### #####  ##|
  ##       #### ####| ##   ########   ## |   ###        ###   |          ## ####   |  ######## ## ##  ##|
  ###      #### ####|  ##    ####    ##  |    ####    ####    |              ###   |  ######## ##    ###|
   ####    #########|  ###          ###  |     ##########     |              ###   |   ####### ###  ####|
    ######  ### ### |   ####      ####   |      ########      |               #    |    ######  ####### |
      ####  ######  |     ##########     |      ########      |                    |      ####  ######  |
              ###   |       ######       |      ########      |                    |              ###   |
)");
}

TEST(Symbol, FillsTheMiddleOfItsBox) {
  for (const auto& [name, size, outline] : allSymbols()) {
    SCOPED_TRACE(name);
    const Rect ink = bounds(outline);
    EXPECT_GE(std::min(ink.origin.x, ink.origin.y), -1e-9);
    EXPECT_GE(std::min(size.width - ink.right(), size.height - ink.bottom()), -1e-9);
    EXPECT_GT(std::min(ink.size.width / size.width, ink.size.height / size.height), 0.75);
    EXPECT_NEAR(ink.center().x, size.width / 2, 0.06);
    EXPECT_NEAR(ink.center().y, size.height / 2, 0.05);
  }
  EXPECT_EQ(allSymbols().size(), 10U);
  EXPECT_EQ(findSymbol("lock"), nullptr);
}

}  // namespace
}  // namespace ui
