#include "wayland/scale.hpp"

#include <gtest/gtest.h>

namespace desktop::wayland {
namespace {

TEST(ScaleTest, IsToldByAnOutputsModeAndItsSizeInPoints) {
  struct Row {
    Extent pixels, points;
    double scale;
  };
  // Compositors cut what is left of a point, round it, or round it up.
  const Row rows[] = {{{1280, 720}, {1280, 720}, 1},          {{1280, 800}, {1024, 640}, 1.25},
                      {{1280, 800}, {853, 533}, 1.5},         {{1280, 800}, {854, 534}, 1.5},
                      {{1280, 800}, {731, 457}, 1.75},        {{1280, 800}, {426, 266}, 3},
                      {{800, 1280}, {533, 853}, 1.5},         {{1280, 800}, {1163, 727}, 1.1},
                      {{1280, 800}, {934, 583}, 1.37},        {{3840, 2160}, {2880, 1620}, 4.0 / 3},
                      {{3840, 2160}, {3051, 1716}, 1.258333}, {{640, 480}, {1280, 960}, 0.5},
                      {{40, 800}, {29, 576}, 1.39},           {{1280, 800}, {1271, 900}, 2080.0 / 2171}};
  for (const auto& [pixels, points, scale] : rows)
    EXPECT_NEAR(outputScale(pixels, points), scale, 1e-6) << pixels.width << " shown as " << points.width;
}

TEST(ScaleTest, MakesSurfacesOfWholePixels) {
  struct Row {
    Extent pixels;
    double pictureScale, wantedScale, outputScale;
    Extent buffer, surface;
  };
  const Row rows[] = {
      {{364, 170}, 1, 1, 1, {364, 170}, {364, 170}},
      {{728, 340}, 2, 2, 2, {728, 340}, {364, 170}},
      {{546, 255}, 1.5, 1.5, 1.5, {546, 255}, {364, 170}},
      {{455, 213}, 1.25, 1.25, 1.25, {455, 215}, {364, 172}},
      {{637, 298}, 1.75, 1.75, 1.75, {637, 301}, {364, 172}},
      {{486, 227}, 4.0 / 3, 4.0 / 3, 4.0 / 3, {488, 228}, {366, 171}},
      {{455, 213}, 1.2500004, 1.25, 1.25, {455, 215}, {364, 172}},  // a scale that was printed on its way
      {{546, 255}, 1.5, 1.5, 1, {546, 255}, {546, 255}},            // larger than its monitor's scale
      {{473, 221}, 1.3, 1.3, 2, {474, 222}, {237, 111}},
      {{364, 170}, 1, 2, 2, {364, 170}, {364, 170}},  // drawn for another monitor
      {{728, 340}, 2, 1.25, 1.25, {728, 340}, {364, 170}},
      {{364, 170}, 1, 1.5, 1, {364, 170}, {546, 255}},
      {{1, 1}, 4, 1, 1, {1, 1}, {1, 1}},
      {{365, 171}, 1.0001, 1.0001, 1.0001, {365, 171}, {365, 171}}};  // whole numbers are too far
  for (const auto& [pixels, picture, wanted, output, buffer, surface] : rows) {
    const auto [bufferSize, surfaceSize] = fit(pixels, picture, wanted, output);
    EXPECT_EQ(bufferSize, buffer) << pixels.width << " at " << picture << " on " << output;
    EXPECT_EQ(surfaceSize, surface) << pixels.width << " at " << picture << " on " << output;
  }
}

}  // namespace
}  // namespace desktop::wayland
