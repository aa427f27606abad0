#include "ui/text_fitting.hpp"

#include <gtest/gtest.h>

#include <string>

#include "ui/fake_measurer.hpp"

using namespace ui;

namespace {

Environment limits(int lineLimit, double smallest) {
  return {.font = Font::system(10).rounded(), .lineLimit = lineLimit, .minimumScaleFactor = smallest};
}

TEST(TextFitting, ShrinksToTheSmallestScaleAndThenCuts) {
  struct Case {
    std::string text;
    std::optional<double> width;
    int lineLimit;
    double smallest;
    double fontSize;
    Size size;
    bool truncated;
  };
  const std::string ten = "abcdefghij";
  const std::string words = "aaaa bbbb cccc";
  FakeMeasurer measurer;
  for (const Case& c : std::vector<Case>{
           {ten, {}, 1, 0.85, 10, {50, 12}, false},
           {ten, infinity, 1, 0.85, 10, {50, 12}, false},
           {ten, 50, 1, 0.85, 10, {50, 12}, false},
           {ten, 50 - 1e-10, 1, 1, 10, {50, 12}, false},
           {ten, 45, 1, 0.85, 9, {45, 10.8}, false},
           {ten, 42.5, 1, 0.85, 8.5, {42.5, 10.2}, false},
           {ten, 40, 1, 0.85, 8.5, {38.25, 10.2}, true},
           {ten, 45, 1, 1, 10, {45, 12}, true},
           {ten, 0, 1, 0.85, 8.5, {0, 10.2}, true},
           {"", 0, 1, 0.85, 10, {0, 12}, false},
           {"ab\ncd", 100, 1, 1, 10, {25, 12}, false},
           {"ab\ncd\nef", {}, 2, 0.85, 10, {15, 24}, true},
           {words, 45, 2, 0.85, 10, {45, 24}, false},
           {words, 44, 2, 0.85, 9.71875, {43.734375, 23.325}, false},
           {words, 20, 2, 0.85, 8.5, {17, 20.4}, true},
           {words, 20, unlimitedLines, 0.85, 10, {20, 36}, false},
       }) {
    const FittedText fitted = fitText(c.text, limits(c.lineLimit, c.smallest), c.width, measurer);
    const std::string what = c.text + " in " + std::to_string(c.width.value_or(-1));
    EXPECT_NEAR(fitted.font.size, c.fontSize, 1e-9) << what;
    EXPECT_EQ(fitted.font.fontDesign, FontDesign::rounded) << what;
    EXPECT_NEAR(fitted.metrics.size.width, c.size.width, 1e-9) << what;
    EXPECT_NEAR(fitted.metrics.size.height, c.size.height, 1e-9) << what;
    EXPECT_EQ(fitted.metrics.truncated, c.truncated) << what;
  }
}

TEST(TextFitting, NeverSetsTextSmallerOrWiderThanItMust) {
  FakeMeasurer measurer;
  for (const int lineLimit : {1, 2}) {
    double previous = 7;
    for (double width = 0; width < 100; width += 0.37) {
      const auto [font, metrics] = fitText("one two three four", limits(lineLimit, 0.7), width, measurer);
      EXPECT_LE(metrics.size.width, width + 0.002);
      EXPECT_TRUE(!metrics.truncated || font.size == 7) << width;
      EXPECT_GE(font.size, previous) << width;
      previous = font.size;
    }
    EXPECT_EQ(previous, 10);
  }
}

}  // namespace
