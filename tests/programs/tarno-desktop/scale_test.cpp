#include <gtest/gtest.h>

#include "tarno/wayland/display.hpp"

namespace desktop::wayland {
namespace {

TEST(ScaleTest, FollowsFromAnOutputsSizesInPixelsAndPoints) {
  // Compositors round fractions of a point down, up, or to the nearest.
  const std::tuple<int, int, int, int, double> rows[] = {
      {1280, 720, 1280, 720, 1},         {1280, 800, 1024, 640, 1.25},         {1280, 800, 853, 533, 1.5},
      {1280, 800, 854, 534, 1.5},        {800, 1280, 533, 853, 1.5},           {640, 480, 1280, 960, 0.5},
      {3840, 2160, 2880, 1620, 4.0 / 3}, {3840, 2160, 3051, 1716, 1.258333},   {40, 800, 29, 576, 1.39},
      {200, 150, 159, 119, 1.26},        {1280, 800, 1271, 900, 2080.0 / 2171}};
  for (const auto& [width, height, shownWidth, shownHeight, scale] : rows)
    EXPECT_NEAR(outputScale({0, 0, width, height}, {0, 0, shownWidth, shownHeight}), scale, 1e-6)
        << shownWidth;
}

TEST(ScaleTest, MakesSurfacesOfWholePixels) {
  const std::tuple<double, int, int> rows[] = {
      {1, 364, 364},       {2, 728, 364},       {1.5, 546, 364},     {1.25, 213, 172},
      {1.75, 298, 172},    {4.0 / 3, 486, 366}, {4.0 / 3, 227, 171}, {1.2500004, 213, 172},
      {2.0 / 3, 364, 546}, {2, 473, 237},       {4, 1, 1},           {1.4999999, 546, 364},
      {1.0001, 171, 171}};  // no whole number of points nearby ends between two pixels
  for (const auto& [scale, pixels, points] : rows)
    EXPECT_EQ(surfaceSide(pixels, scale), points) << pixels << " at " << scale;
}

}  // namespace
}  // namespace desktop::wayland
