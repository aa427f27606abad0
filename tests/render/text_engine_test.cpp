#include "render/text_engine.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "render/image.hpp"
#include "render/pixels.hpp"

namespace {

using ui::Font;
using ui::FontWeight;

const Font caption = Font::system(12).rounded();

struct Ink {
  int left, top, right, bottom;  ///< in pixels, the last two exclusive
  bool colored;
};

/// Where `run` leaves marks on a tile of 300 x 60 points.
Ink ink(render::TextEngine& engine, const ui::TextRun& run, double scale = 1) {
  const auto pixels =
      Pixels::decode(render::encodeImage({{300, 60}, {run}, {}}, engine, render::ImageFormat::png, scale));
  Ink found{pixels.width, pixels.height, 0, 0, false};
  for (int y = 0; y < pixels.height; ++y) {
    for (int x = 0; x < pixels.width; ++x) {
      const auto p = pixels.at(x, y);
      if (p[3] < 64) continue;
      found = {std::min(found.left, x), std::min(found.top, y), std::max(found.right, x + 1),
               std::max(found.bottom, y + 1), found.colored || p[0] != p[1] || p[1] != p[2]};
    }
  }
  return found;
}

ui::TextRun place(render::TextEngine& engine, std::string text, std::optional<double> width,
                  int maxLines = 1) {
  const auto metrics = engine.measure(text, caption, width, maxLines);
  return {text,     caption,           ui::black, {{50, 10}, metrics.size}, metrics.baseline,
          maxLines, metrics.truncated, {}};
}

std::string repeated(std::string_view text, int count) {
  std::string result;
  for (int i = 0; i < count; ++i) result += text;
  return result;
}

struct Sample {
  const char* name;
  std::string text;
};

const Sample samples[] = {
    {"latin", "Kivo's MacBook Pro in the kitchen of the house by the lake"},
    {"arabic", "جهاز ماك الخاص بمحمد علي في المطبخ الكبير في البيت"},
    {"japanese", "きヴぉの Mac 書斎の机の上にある古いノートパソコン"},
    {"emoji", repeated("👩‍👩‍👧‍👦", 12)},
    {"marks", std::string(400, 'a') + "\u0301\u0323\u0301"},
    {"lone marks and unclosed overrides", "\u0301\u0301 \u202E abc \u2067 def \u200F 12"},
    {"breaks", "first\nsecond\r\nthird\u2029fourth"},
    {"nul and controls", std::string("a\0b\tc\x1B[1m\u0085", 11) + "\x7F"},
    {"not utf-8", "Kivo\xFF\xC0\x80\xED\xA0\x80 Mac \xE3\x81"},
    {"100 kB", std::string(100'000, 'x')},
    {"empty", ""},
};

TEST(TextEngine, fitsWhatItWasGivenAndStaysAsItIsAtTheWidthThatItReturned) {
  render::TextEngine engine;
  const double lineHeight = engine.measure("x", caption, {}, 1).size.height;
  for (const auto& [name, text] : samples) {
    for (const int maxLines : {1, 2, 3}) {
      for (const auto width : {std::optional<double>{}, {0.0}, {20.3}, {77.7}, {194.0}, {1e9}}) {
        const auto m = engine.measure(text, caption, width, maxLines);
        SCOPED_TRACE(testing::Message()
                     << name << " in " << maxLines << " lines, width " << width.value_or(-1));
        EXPECT_LE(m.size.width, width.value_or(ui::infinity));
        EXPECT_LE(m.lines, maxLines);
        EXPECT_DOUBLE_EQ(m.size.height, m.lines * lineHeight);

        render::TextEngine fresh;  // has kept nothing
        const auto again = fresh.measure(text, caption, m.size.width, maxLines);
        EXPECT_EQ(again.lines, m.lines);
        EXPECT_EQ(again.truncated, m.truncated);
        EXPECT_EQ(again.size, m.size);
      }
    }
  }
}

TEST(TextEngine, cutsWhereMoreWouldFollow) {
  render::TextEngine engine;
  const struct {
    const char* text;
    std::optional<double> width;
    int maxLines, lines;
    bool truncated;
  } table[] = {{"one two", {}, 1, 1, false},         {"one\ntwo", {}, 1, 1, false},
               {"one\ntwo", {}, 2, 2, false},        {"a\nb\nc", {}, 2, 2, true},
               {"a\nb\nc", 100, 2, 2, true},         {"a\r\nb\n", 100, 2, 2, false},
               {"one two", 30, 2, 2, false},         {"one two three", 30, 2, 2, true},
               {"onetwothreefour", 40, 3, 3, false}, {"one two\nx", 30, 2, 2, true}};
  for (const auto& row : table) {
    const auto m = engine.measure(row.text, caption, row.width, row.maxLines);
    EXPECT_EQ(m.lines, row.lines) << row.text;
    EXPECT_EQ(m.truncated, row.truncated) << row.text;
  }
  EXPECT_TRUE(engine.measure(std::string(100'000, 'x'), caption, {}, 1).truncated);
  EXPECT_EQ(engine.measure("one\r\ntwo", caption, {}, 1).size,
            engine.measure("one two", caption, {}, 1).size);
  EXPECT_EQ(engine.measure(std::string("a\0b", 3), caption, {}, 1).size,
            engine.measure("a b", caption, {}, 1).size);
}

TEST(TextEngine, everyWeightHasItsFaceAndDigitsNeverFallBack) {
  render::TextEngine engine;
  const auto width = [&](const char* text, Font font) {
    return engine.measure(text, font, {}, 1).size.width;
  };
  const double regular = width("Kivo's Mac", caption);
  const double medium = width("Kivo's Mac", caption.weight(FontWeight::medium));
  const double bold = width("Kivo's Mac", caption.weight(FontWeight::bold));
  EXPECT_LT(regular, medium);
  EXPECT_LT(medium, bold);
  EXPECT_EQ(width("Kivo's Mac", caption.weight(FontWeight::semibold)), bold);
  EXPECT_NE(width("Kivo's Mac", Font::system(12)), regular);
  EXPECT_NEAR(width("Kivo's Mac", caption.scaled(10)), regular * 10, regular / 100);
  EXPECT_NEAR(width("書 Mac 12", caption) - width("書", caption), width(" Mac 12", caption), 0.01);
}

TEST(TextEngine, drawsInsideTheBoxAtEveryScale) {
  render::TextEngine engine;
  for (const double scale : {1.0, 1.5, 2.0, 3.0}) {
    const auto found = ink(engine, place(engine, "HHHHHH", {}), scale);
    const auto run = place(engine, "HHHHHH", {});
    EXPECT_EQ(found.bottom, std::round((run.box.origin.y + run.baseline) * scale)) << scale;
    EXPECT_NEAR(found.left, run.box.origin.x * scale, 1.2 * scale);
    EXPECT_NEAR(found.right, run.box.right() * scale, 1.5 * scale);
  }
}

TEST(TextEngine, keepsLineBreaksAndSidesOfOtherScripts) {
  render::TextEngine engine;
  const auto arabic = place(engine, "جهاز ماك الخاص بمحمد علي\nماك", 150, 2);
  EXPECT_GT(ink(engine, arabic).right, arabic.box.right() - 3);
  auto shorter = place(engine, "ماك", {});
  shorter.box.size.width = 200;
  EXPECT_GT(ink(engine, shorter).left, 200);

  EXPECT_TRUE(ink(engine, place(engine, "🚀", {})).colored);
  EXPECT_FALSE(ink(engine, place(engine, "書斎", {})).colored);
}

TEST(TextEngine, turnsAboutTheCornerOfTheBox) {
  render::TextEngine engine;
  auto run = place(engine, "HHHHHH", {});
  run.rotation = ui::Angle::degrees(90);
  const auto found = ink(engine, run);
  EXPECT_NEAR(found.left, 50 - run.baseline, 0.5);
  EXPECT_NEAR(found.top, 10, 2);
  EXPECT_LE(found.right, 50);
}

}  // namespace
