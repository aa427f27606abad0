#include "tarno/render/text_engine.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "support/pixels.hpp"
#include "tarno/render/cairo_handle.hpp"
#include "tarno/render/display_text.hpp"
#include "tarno/render/image.hpp"
#include "tarno/render/painter.hpp"

namespace {

using namespace std::string_literals;

const ui::Font caption = ui::Font::system(12).rounded();

/// Measures with a new engine, whose caches are empty.
ui::TextMetrics measured(const std::string& text, std::optional<double> width, int maxLines,
                         const ui::Font& font = caption) {
  return render::TextEngine{}.measure(text, font, width, maxLines);
}

double width(const std::string& text, const ui::Font& font = caption) {
  return measured(text, {}, 1, font).size.width;
}

ui::TextRun place(const std::string& text, double width = 1e9, int lines = 1,
                  const ui::Font& font = caption) {
  const auto m = measured(text, width, lines, font);
  return {text, font, ui::black, {{50, 10}, m.size}, m.baseline, lines, m.truncated};
}

/// Returns a PNG of `run` on a tile of 300 x 60 points.
std::string png(render::TextEngine& engine, const ui::TextRun& run, double scale = 1) {
  return render::encodeImage({{300, 60}, {run}, {}}, engine, render::ImageFormat::png, scale);
}

/// Draws with a new engine, whose caches are empty.
std::string png(const ui::TextRun& run, double scale = 1) {
  render::TextEngine engine;
  return png(engine, run, scale);
}

struct Ink {
  int left, top, right, bottom;  ///< in pixels, the last two exclusive
};

/// Returns the smallest rectangle around what `run` draws on the tile.
Ink ink(const ui::TextRun& run, double scale = 1) {
  const auto pixels = Pixels::decode(png(run, scale));
  Ink found{pixels.width, pixels.height, 0, 0};
  for (int y = 0; y < pixels.height; ++y)
    for (int x = 0; x < pixels.width; ++x)
      if (pixels.at(x, y)[3] >= 64)
        found = {std::min(found.left, x), std::min(found.top, y), std::max(found.right, x + 1), y + 1};
  return found;
}

TEST(TextEngine, fitsTheGivenWidthAndNeedsNoMoreThanTheReturnedOne) {
  const std::string samples[] = {
      "",
      std::string(100'000, 'x'),
      "Kivo's MacBook Pro in the kitchen of the house by the lake",
      "جهاز ماك الخاص بمحمد علي في المطبخ الكبير في البيت",
      "きヴぉの Mac 書斎の机の上にある古いノートパソコン",
      "👩‍👩‍👧‍👦👩‍👩‍👧‍👦👩‍👩‍👧‍👦👩‍👩‍👧‍👦",
      std::string(400, 'a') + "\u0301\u0323\u0301",
      "\u0301\u0301 \u202E abc \u2067 def \u200F 12",
      "a\0b\tc\x1B[1m\u0085first\nsecond\r\nthird\u2029\x7FKivo\xFF\xC0\x80\xED\xA0\x80 Mac \xE3\x81"s};
  render::TextEngine engine;
  const double lineHeight = measured("x", {}, 1).size.height;
  for (const auto& text : samples)
    for (const int maxLines : {1, 2, 3})
      for (const auto width : {std::optional<double>{}, {0.0}, {20.3}, {77.7}, {194.0}, {1e9}}) {
        const auto m = engine.measure(text, caption, width, maxLines);
        SCOPED_TRACE(text.substr(0, 50) + " in " + std::to_string(width.value_or(-1)));
        EXPECT_LE(m.size.width, width.value_or(ui::infinity));
        const double lines = m.size.height / lineHeight;
        EXPECT_NEAR(lines, std::clamp<double>(std::round(lines), 1, maxLines), 1e-9);
        const auto again = measured(text, m.size.width, maxLines);
        EXPECT_TRUE(again.truncated == m.truncated && again.size == m.size);
      }
}

TEST(TextEngine, cutsWhereMoreWouldFollow) {
  const std::tuple<const char*, std::optional<double>, int, int, bool> table[] = {
      {"one two", {}, 1, 1, false},  {"one\ntwo", {}, 1, 1, false},     {"one\ntwo", {}, 2, 2, false},
      {"a\nb\nc", {}, 2, 2, true},   {"a\nb\nc", 100, 2, 2, true},      {"a\r\nb\n", 100, 2, 2, false},
      {"one two", 30, 2, 2, false},  {"one two three", 30, 2, 2, true}, {"onetwothreefour", 40, 3, 3, false},
      {"one two\nx", 30, 2, 2, true}};
  const double lineHeight = measured("x", {}, 1).size.height;
  for (const auto& [text, width, maxLines, lines, truncated] : table) {
    EXPECT_NEAR(measured(text, width, maxLines).size.height, lines * lineHeight, 1e-9) << text;
    EXPECT_EQ(measured(text, width, maxLines).truncated, truncated) << text;
  }
  EXPECT_TRUE(measured(std::string(100'000, 'x'), {}, 1).truncated);
  EXPECT_EQ(measured("a\nb\nc", 100, 2).size, measured("a\nb…", {}, 2).size);
  EXPECT_TRUE(png(place("mmmmmmm", 40, 3)) == png(place("mmm\nmmm\nm", 40, 3))) << "without hyphens";
}

TEST(TextEngine, everyTextHasItsFontAndDigitsNeverFallBack) {
  const ui::Font plain = ui::Font::system(12);
  EXPECT_LT(width("abc", plain), width("abc", plain.weight(ui::FontWeight::bold)));
  EXPECT_LT(width("abc", plain), width("abc"));
  EXPECT_NEAR(width("Kivo's Mac", caption.scaled(10)), width("Kivo's Mac") * 10, 0.1);
  for (const std::string before : {"書", "🔒", "דה"})
    EXPECT_NEAR(width(before + " Mac 12") - width(before), width(" Mac 12"), 0.01) << before;
  // Quicksand has a pi but no other Greek letter, and not the letter U+01C2.
  for (const std::string text : {"π", "απδ", "\u01C2"})
    EXPECT_NEAR(width(text), 0.97 * width(text, plain), 0.01) << text;
}

TEST(TextEngine, drawsTheSameWhereNoFontConfigurationIsNamed) {
  render::TextEngine all, alone;
  all.measure("x", caption, {}, 1);  // reads the environment variable
  unsetenv("FONTCONFIG_FILE");
  for (const std::string text : {"Kivo's Mac – déjà vu", "書斎 Mac", "\u01C2"})
    EXPECT_TRUE(png(alone, place(text)) == png(all, place(text))) << text;
}

TEST(TextEngine, stackedMarksStayNearTheirLine) {
  std::string stacked = "Z";
  for (int i = 0; i < 40; ++i) stacked += "\u030D\u0329";
  auto run = place(stacked);
  run.box.origin.y = 25;
  const double quarter = run.box.size.height / 4;
  EXPECT_NEAR(ink(run).top, run.box.origin.y - quarter, 1.5);
  EXPECT_NEAR(ink(run).bottom, run.box.bottom() + quarter, 1.5);
}

TEST(TextEngine, imagesAreAtTheSamePlaceInVectorFiles) {
  auto run = place("| 🚀");
  const Ink onPixels = ink(run);
  run.color = ui::black.opacity(0.5);
  const render::Surface vector(cairo_recording_surface_create(CAIRO_CONTENT_COLOR_ALPHA, nullptr));
  render::TextEngine engine;
  render::paint({{300, 60}, {run}, {}}, engine, render::Context(cairo_create(vector.get())).get());
  double x, y, width, height;
  cairo_recording_surface_ink_extents(vector.get(), &x, &y, &width, &height);
  EXPECT_NEAR(x, onPixels.left, 1.5);
  EXPECT_NEAR(y, onPixels.top, 1.5);
  EXPECT_NEAR(x + width, onPixels.right, 1.5);
  EXPECT_NEAR(y + height, onPixels.bottom, 1.5);
  for (const auto& pixel : Pixels::decode(png(run)).rows) EXPECT_LE(pixel[3], 129);
}

TEST(DisplayText, isValidAndBounded) {
  using render::displayText;
  const std::string filler(render::longestDisplayText - 3, 'x');
  EXPECT_EQ(displayText(filler + "xxé", true).text, filler + "xx…");
  EXPECT_EQ(displayText(filler + "🔒", true).text, filler + "…");
  EXPECT_EQ(displayText(filler + "xxx", true).text, filler + "xxx");
  EXPECT_TRUE(displayText(filler + "xxé", true).cut);
  EXPECT_FALSE(displayText(filler + "xxx", true).cut);
  EXPECT_EQ(displayText("\uFDCF\uFDD0\uFDEF\uFDF0\uFFFE", true).text, "\uFDCF\uFFFD\uFFFD\uFDF0\uFFFD");
  EXPECT_EQ(displayText("\xE3\x81", true).text, "\uFFFD\uFFFD");
  EXPECT_EQ(displayText("a\tb\x7F\u009F\u0085\r\nc\v \n", false).text, "a b  \u2028\u2028c");
  EXPECT_EQ(displayText("\u202Ea\u202Cb\u2067c", true).text, "ab\u2067c");
  EXPECT_EQ(displayText("\n\r\n \u2029", false).text, "");
}

TEST(TextEngine, drawsInsideTheBoxAtEveryScale) {
  render::TextEngine kept;
  auto run = place("HHHHHH");
  for (const double scale : {1.0, 1.5, 2.0, 3.0}) {
    const auto found = ink(run, scale);
    EXPECT_EQ(found.bottom, std::round((run.box.origin.y + run.baseline) * scale)) << scale;
    EXPECT_NEAR(found.left, run.box.origin.x * scale, 1.2 * scale);
    EXPECT_NEAR(found.right, run.box.right() * scale, 1.5 * scale);
    run.box.origin.x += 0.5;
    EXPECT_TRUE(png(kept, run) == png(run));
  }
  auto huge = place("HHHHHHHHHH", 1e9, 1, ui::Font::system(1000));
  huge.box.origin = {0, 50 - huge.baseline};
  EXPECT_GT(ink(huge).right, 0);
}

TEST(TextEngine, keepsLineBreaksAndSidesOfOtherScripts) {
  const auto arabic = place("جهاز ماك الخاص بمحمد علي\nماك", 150, 2);
  EXPECT_GT(ink(arabic).right, arabic.box.right() - 3);
  std::string blank;
  for (int i = 0; i < 30; ++i) blank += "\u00A0";
  const auto above = place("ماك\n" + blank, 1e9, 2);
  EXPECT_GT(ink(above).left, above.box.right() - 40);
  auto shorter = place("ماك");
  shorter.box.size.width = 200;
  EXPECT_GT(ink(shorter).left, 200);
}

}  // namespace
