#include "ui/layout/text_fitting.hpp"

#include <gtest/gtest.h>

#include "support/fake_measurer.hpp"

using namespace ui;

namespace {

FittedText fit(const std::string& text, std::optional<double> width, int lineLimit, double smallest) {
  FakeMeasurer measurer;
  const Environment environment{
      .font = Font::system(10).rounded(), .lineLimit = lineLimit, .minimumScaleFactor = smallest};
  return fitText(text, environment, width, measurer);
}

TEST(TextFitting, ShrinksToTheSmallestScaleAndThenCuts) {
  const std::string ten = "abcdefghij";
  const std::string words = "aaaa bbbb cccc";
  const struct {
    std::string text;
    std::optional<double> width;
    int lineLimit;
    double smallest, fontSize, fittedWidth;
    int lines;
    bool truncated = false;
  } cases[] = {{ten, {}, 1, 0.85, 10, 50, 1},          {ten, 50 - 1e-10, 1, 1, 10, 50, 1},
               {ten, 49.9, 1, 0.85, 9.98, 49.9, 1},    {ten, 45, 1, 0.85, 9, 45, 1},
               {ten, 42.5, 1, 0.85, 8.5, 42.5, 1},     {ten, 40, 1, 0.85, 8.5, 38.25, 1, true},
               {ten, 45, 1, 1, 10, 45, 1, true},       {"", 0, 1, 0.85, 10, 0, 1},
               {"ab\ncd", 100, 1, 1, 10, 25, 1},       {"ab\ncd\nef", {}, 2, 0.85, 10, 15, 2, true},
               {words, 45, 2, 0.85, 10, 45, 2},        {words, 44, 2, 0.85, 9.71875, 43.734375, 2},
               {words, 20, 2, 0.85, 8.5, 17, 2, true}, {words, 20, unlimitedLines, 0.85, 10, 20, 3}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text + " in " + std::to_string(c.width.value_or(-1)));
    const auto [font, metrics] = fit(c.text, c.width, c.lineLimit, c.smallest);
    EXPECT_NEAR(font.size, c.fontSize, 1e-9);
    EXPECT_EQ(font.fontDesign, FontDesign::rounded);
    EXPECT_NEAR(metrics.size.width, c.fittedWidth, 1e-9);
    EXPECT_NEAR(metrics.size.height, 1.2 * c.fontSize * c.lines, 1e-9);
    EXPECT_EQ(metrics.truncated, c.truncated);
  }
}

}  // namespace
