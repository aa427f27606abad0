#include "render/image.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <set>
#include <sstream>

#include "render/png.hpp"
#include "support/pixels.hpp"

namespace {

using render::ImageFormat;
using ui::Angle;
using ui::Path;

constexpr ui::Color red = ui::Color::sRGB(1, 0, 0);

std::string encode(const ui::Scene& scene, ImageFormat format, double scale = 1) {
  render::TextEngine text;
  return render::encodeImage(scene, text, format, scale);
}

Pixels draw(const ui::Scene& scene, double scale = 1) {
  return Pixels::decode(encode(scene, ImageFormat::png, scale));
}

/// For each of `points`, "#" where `item`, drawn alone on 40 x 40 points, leaves a mark, else ".".
std::string marks(const ui::SceneItem& item, std::initializer_list<std::pair<int, int>> points) {
  const Pixels pixels = draw({{40, 40}, {item}, {}});
  std::string result;
  for (const auto& [x, y] : points) result += pixels.at(x, y)[3] > 0 ? '#' : '.';
  return result;
}

/// A text on a pane with round corners, and a stripe in one of them.
ui::Scene tile() {
  const ui::Rect whole{{0, 0}, {10, 7}};
  const ui::TextRun text{"Mac", ui::Font::system(2).rounded(), red.opacity(0.5), {{2, 1}, {5, 2}}, 1.5};
  const ui::FillPath pane{Path::roundedRect(whole, 3), ui::Color::sRGB(1, 1, 0).opacity(0.5)};
  const ui::FillPath stripe{Path::rect({{4, 0}, {6, 1}}), red};
  return {whole.size, {pane, text, stripe}, {}};
}

TEST(Image, sizesAreWholePixelsThatCoverThePoints) {
  using render::PixelSize;
  const struct {
    ui::Size points;
    double scale;
    PixelSize pixels;
  } table[] = {{{10, 7}, 1, {10, 7}},         {{170, 7}, 1.1, {187, 8}},     {{10, 7}, 0.5, {5, 4}},
               {{364, 170}, 1.5, {546, 255}}, {{170, 170}, 0.7, {119, 119}}, {{0, -3}, 1, {1, 1}},
               {{16384, 1}, 1, {16384, 1}}};
  for (const auto& row : table) EXPECT_EQ(render::pixelSize(row.points, row.scale), row.pixels) << row.scale;
}

TEST(Image, refusesSizesThatNobodyCanDraw) {
  render::TextEngine text;
  const struct {
    ui::Size points;
    double scale;
  } table[] = {{{364, 170}, 46},       {{170, 364}, 46},       {{364, 170}, 1e300},
               {{1e9, 1}, 1},          {{1, 1e9}, 1},          {{ui::infinity, 1}, 1},
               {{1, 1}, ui::infinity}, {{1, 1}, std::nan("")}, {{std::nan(""), 1}, 1}};
  for (const auto& row : table) {
    EXPECT_THROW(render::drawPixels({row.points, {}, {}}, text, row.scale, nullptr, 0), render::ImageError);
    for (const auto format : {ImageFormat::png, ImageFormat::svg, ImageFormat::pdf})
      EXPECT_THROW(encode({row.points, {}, {}}, format, row.scale), render::ImageError) << row.scale;
  }
}

TEST(Image, hasTheColoursOfTheSceneAndKeepsToItsRows) {
  const Pixels png = draw(tile(), 2);
  render::TextEngine text;
  constexpr std::size_t width = 20, height = 14, stride = 23;
  std::vector<std::uint32_t> pixels(stride * height);
  render::drawPixels(tile(), text, 2, pixels.data(), stride * sizeof(std::uint32_t));
  const struct {
    std::size_t x, y;
    Pixels::Pixel straight;
    std::uint32_t premultiplied;
  } table[] = {{0, 13, {0, 0, 0, 0}, 0},
               {10, 9, {255, 255, 0, 128}, 0x80808000},
               {19, 0, {255, 0, 0, 255}, 0xFFFF0000}};
  for (const auto& row : table) {
    EXPECT_EQ(png.at(static_cast<int>(row.x), static_cast<int>(row.y)), row.straight);
    EXPECT_EQ(pixels.at(row.y * stride + row.x), row.premultiplied);
  }
  for (std::size_t y = 0; y < height; ++y) EXPECT_EQ(pixels.at(y * stride + width), 0u);
}

TEST(Image, pngSaysItsColourSpaceAndResolution) {
  const std::string png = encode(tile(), ImageFormat::png, 2);
  EXPECT_NE(png.find(std::string("sRGB\0", 5)), std::string::npos);
  // 144 dots per inch are 5669 per metre.
  EXPECT_NE(png.find(std::string("pHYs\0\0\x16\x25\0\0\x16\x25\x01", 13)), std::string::npos);
  const std::pair<std::uint32_t, std::uint32_t> table[] = {
      {0x00000000, 0x00000000}, {0xFF123456, 0xFF123456}, {0x80402001, 0x80804002}, {0x01010001, 0x01FF00FF}};
  for (const auto& [premultiplied, straight] : table)
    EXPECT_EQ(render::unpremultiplied(premultiplied), straight);
}

TEST(Image, coloursAreRoundedHalfUp) {
  const struct {
    ui::Color color;
    Pixels::Pixel pixel;
  } table[] = {{ui::Color::sRGB(0.97, 0.98, 0.972), {247, 250, 248, 255}},
               {ui::Color::sRGB(0.5, 0.08, 2), {128, 20, 255, 255}},
               {ui::Color::sRGB(1, 1, -1).opacity(0.16), {255, 255, 0, 41}}};
  for (const auto& [color, pixel] : table)
    EXPECT_EQ(draw({{4, 4}, {ui::FillPath{Path::rect({{0, 0}, {4, 4}}), color}}, {}}).at(1, 1), pixel);
}

bool has(const std::string& file, const std::string& text) { return file.find(text) != std::string::npos; }

TEST(Image, vectorFilesHoldOutlinesAndAreTheSameEveryTime) {
  const std::string svg = encode(tile(), ImageFormat::svg, 2), pdf = encode(tile(), ImageFormat::pdf, 2);
  EXPECT_TRUE(has(svg, R"(width="20" height="14" viewBox="0 0 20 14")"));
  EXPECT_FALSE(has(svg, "<image"));
  EXPECT_TRUE(has(pdf, "/MediaBox [ 0 0 20 14 ]"));
  EXPECT_TRUE(has(pdf, "Quicksand"));
  EXPECT_FALSE(has(pdf, "/Image"));
  EXPECT_FALSE(has(pdf, "/CreationDate"));
  EXPECT_TRUE(encode(tile(), ImageFormat::svg, 2) == svg);
  EXPECT_TRUE(encode(tile(), ImageFormat::pdf, 2) == pdf);
}

TEST(Image, vectorFilesSayWhatTheyShow) {
  render::TextEngine text;
  const ui::Scene scene{{9, 9}, {}, {{.label = "a < b"}, {.label = "Mac\x01 surface7\uFFFE"}}};
  const std::string svg = encodeImage(scene, text, ImageFormat::svg, 1, "T &\t\"t\"");
  EXPECT_TRUE(has(svg,
                  " role=\"img\">\n<title>T &amp; &quot;t&quot;</title>\n"
                  "<desc>a &lt; b, Mac  surface7\uFFFD</desc>\n<"));
  EXPECT_FALSE(has(encode({{9, 9}, {}, {}}, ImageFormat::svg), "<title>"));
  const std::string pdf = encodeImage({{9, 9}, {}, {{.label = "ab"}}}, text, ImageFormat::pdf, 1, "Title");
  EXPECT_TRUE(has(pdf, "/Title (Title)"));
  EXPECT_TRUE(has(pdf, "/Subject (ab)"));
}

TEST(Image, pdfTakesEveryText) {
  const auto pdf = [](const std::string& text) {
    return encode({{90, 20}, {ui::TextRun{text, ui::Font::system(12), red, {{0, 0}, {90, 20}}, 15}}, {}},
                  ImageFormat::pdf);
  };
  EXPECT_TRUE(pdf("\uFFFE\uFDD0\uFDEF\U0010FFFF") == pdf("\uFFFD\uFFFD\uFFFD\uFFFD"));
  // Readers call a file malformed that lists an image twice.
  const std::string emoji = pdf("\U0001F512 \U0001F512");
  const std::size_t start = emoji.find("/XObject <<");
  std::istringstream names(emoji.substr(start, emoji.find(">>", start) - start));
  std::set<std::string> seen;
  for (std::string word; names >> word;)
    if (word.starts_with("/x")) EXPECT_TRUE(seen.insert(word).second) << word;
  EXPECT_FALSE(seen.empty());
  EXPECT_GT(std::stoi(emoji.substr(emoji.find("/Width ") + 7)), 100);
}

/// The first and the last pixel that a square of 10 points at (5.3, 5.6) covers whole, in its middle row and
/// column; -1 where pixels are covered in part.
std::array<int, 4> coveredPixels(double scale, std::optional<ui::Point> anchor) {
  const Pixels pixels =
      draw({{20, 20}, {ui::FillPath{Path::rect({{5.3, 5.6}, {10, 10}}), red, anchor}}, {}}, scale);
  std::array<int, 4> found{-1, -1, -1, -1};
  for (int i = 0; i < pixels.width; ++i)
    for (const std::size_t axis : {0u, 2u}) {
      const int alpha = axis == 0 ? pixels.at(i, pixels.height / 2)[3] : pixels.at(pixels.width / 2, i)[3];
      if (alpha != 0 && alpha != 255) return {-1, -1, -1, -1};
      if (alpha == 0) continue;
      if (found[axis] < 0) found[axis] = i;
      found[axis + 1] = i;
    }
  return found;
}

TEST(Painter, setsSmallSignsOnWholePixels) {
  using Range = std::array<int, 4>;
  const ui::Point middle{10.3, 10.6};
  EXPECT_EQ(coveredPixels(1, middle), (Range{5, 14, 6, 15}));
  EXPECT_EQ(coveredPixels(2, middle), (Range{11, 30, 11, 30}));
  EXPECT_EQ(coveredPixels(1, {}), (Range{-1, -1, -1, -1}));
  const auto svg = [](std::optional<ui::Point> anchor) {
    return encode({{20, 20}, {ui::FillPath{Path::rect({{5.3, 5.6}, {10, 10}}), red, anchor}}, {}},
                  ImageFormat::svg);
  };
  EXPECT_TRUE(svg(middle) == svg({}));
}

TEST(Painter, fillsByTheNonzeroRuleAndStrokesWithCapsAndMitres) {
  Path twice = Path::rect({{0, 0}, {40, 40}});
  for (const auto& element : Path::rect({{10, 10}, {20, 20}}).elements) twice.elements.push_back(element);
  EXPECT_EQ(marks(ui::FillPath{twice, red}, {{20, 20}, {5, 5}}), "##");
  // Before the end, where a round cap reaches, and in the corner that it leaves out.
  const auto points = {std::pair{29, 16}, {32, 20}, {34, 15}};
  const Path line{{Path::Move{{10, 20}}, Path::Line{{30, 20}}}};
  EXPECT_EQ(marks(ui::StrokePath{line, {10}, red}, points), "#..");
  EXPECT_EQ(marks(ui::StrokePath{line, {10, ui::LineCap::round}, red}, points), "##.");
  // The mitre of a right angle is 1.41 line widths long, that of 16 degrees 7, that of 9 degrees 12.7.
  const Path corner{{Path::Move{{10, 30}}, Path::Line{{30, 30}}, Path::Line{{30, 10}}}};
  EXPECT_EQ(marks(ui::StrokePath{corner, {10}, red}, {{34, 34}}), "#");
  const auto spike = [](double half) {
    return Path{{Path::Move{{0, 19.1 - half}}, Path::Line{{14, 19.1}}, Path::Line{{0, 19.1 + half}}}};
  };
  EXPECT_EQ(marks(ui::StrokePath{spike(2), {2}, red}, {{19, 19}}), "#");
  EXPECT_EQ(marks(ui::StrokePath{spike(1.1), {2}, red}, {{19, 19}}), ".");
}

TEST(Painter, arcsRunClockwiseWhenTheirEndIsTheLarger) {
  const auto arc = [](double start, double end) {
    const Path path{{Path::Arc{{20, 20}, 15, Angle::degrees(start), Angle::degrees(end)}}};
    // Lower right, lower left, upper left, upper right.
    return marks(ui::StrokePath{path, {4}, red}, {{30, 30}, {9, 30}, {9, 9}, {30, 9}});
  };
  EXPECT_EQ(arc(0, 90), "#...");
  EXPECT_EQ(arc(0, -90), "...#");
  EXPECT_EQ(arc(154.8, 457.2), "#.##");
}

}  // namespace
