#include <gtest/gtest.h>

#include "tarno/x11/screen.hpp"

namespace desktop::x11 {
namespace {

/// Returns a window that reserves `depth` pixels at an edge (left, right, top, bottom), from `start` to
/// `end`.
Window strut(std::size_t edge, int depth, int start, int end) {
  Window window;
  window.strut.resize(12);
  window.strut[edge] = depth;
  window.strut[4 + 2 * edge] = start;
  window.strut[5 + 2 * edge] = end;
  return window;
}

/// Returns a window that the window manager does not manage.
Window overlay(const Area& area, std::vector<int> strut = {}) {
  return {{}, area, true, false, false, std::move(strut)};
}

TEST(FreeArea, IsWhatPanelsLeaveOfTheirMonitor) {
  const Area screen{0, 0, 2048, 768}, first{0, 0, 1024, 768}, second{1024, 0, 1024, 600};
  const auto bar = overlay({0, 740, 1024, 28}), highBar = overlay({0, 730, 1024, 38});
  const auto placed = overlay({1024, 0, 1024, 24}, {0, 0, 24, 0, 0, 0, 0, 0, 0, 0, 0, 0});
  auto framed = bar, unplaced = placed;
  framed.isOverlay = unplaced.isOverlay = false;
  const std::vector<Area> workAreas{{9, 20, 1000, 700}, {1024, 0, 900, 768}};
  const std::tuple<const char*, std::vector<Window>, Area, std::vector<Area>, Area, Area> cases[] = {
      {"nothing", {}, screen, {}, first, second},
      {"top of the second", {strut(2, 40, 1024, 2047)}, screen, {}, first, {1024, 40, 1024, 560}},
      {"of one column", {strut(2, 40, 1023, 1024)}, screen, {}, {0, 40, 1024, 728}, {1024, 40, 1024, 560}},
      {"left of the second", {strut(0, 1064, 0, 599)}, screen, {}, first, {1064, 0, 984, 600}},
      {"right of the first", {strut(1, 1064, 0, 767)}, screen, {}, {0, 0, 984, 768}, second},
      {"bottom of the lower", {strut(3, 198, 1024, 2047)}, screen, {}, first, {1024, 0, 1024, 570}},
      {"no range, but a place", {placed}, screen, {}, first, {1024, 24, 1024, 576}},
      {"neither", {unplaced}, screen, {}, first, second},
      {"a bar", {bar}, {0, 0, 2048, 740}, {}, {0, 0, 1024, 740}, second},
      {"a bar in the work area", {highBar}, {0, 0, 2048, 740}, {}, first, second},
      {"a window in a frame", {framed}, {0, 0, 2048, 740}, {}, first, second},
      {"work areas", {}, screen, workAreas, {9, 20, 1000, 700}, {1024, 0, 900, 600}},
      {"both", {strut(2, 40, 0, 1023)}, screen, {{0, 20, 1024, 748}}, {0, 40, 1024, 728}, second}};
  for (const auto& [name, windows, workArea, ofMonitors, ofFirst, ofSecond] : cases) {
    const Screen state{screen, {}, windows, workArea, ofMonitors, "", {}, false};
    EXPECT_EQ(freeArea(first, state), ofFirst) << name;
    EXPECT_EQ(freeArea(second, state), ofSecond) << name;
  }
}

}  // namespace
}  // namespace desktop::x11
