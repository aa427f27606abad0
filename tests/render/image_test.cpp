#include "render/image.hpp"

#include <gtest/gtest.h>

#include <cmath>

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

/// A text on a pane with round corners, and a stripe beyond them.
ui::Scene tile() {
  const ui::Rect whole{{0, 0}, {10, 7}};
  const ui::TextRun text{"Mac", ui::Font::system(2).rounded(), red.opacity(0.5), {{2, 1}, {5, 2}}, 1.5};
  const ui::FillPath pane{Path::rect(whole), ui::Color::sRGB(1, 1, 0).opacity(0.5)};
  const ui::FillPath stripe{Path::rect({{4, 0}, {6, 1}}), red};
  return {whole.size, {ui::BeginClip{Path::roundedRect(whole, 3)}, pane, text, ui::EndClip{}, stripe}, {}};
}

TEST(Image, pngHasTheColoursOfTheScene) {
  const Pixels pixels = draw(tile(), 2);
  EXPECT_EQ(pixels.at(0, 13), (Pixels::Pixel{0, 0, 0, 0}));
  EXPECT_EQ(pixels.at(10, 9), (Pixels::Pixel{255, 255, 0, 128}));
  EXPECT_EQ(pixels.at(19, 0), (Pixels::Pixel{255, 0, 0, 255}));
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

TEST(Image, pixelsAreThoseOfThePng) {
  render::TextEngine text;
  const ui::Scene scene = tile();
  constexpr std::uint32_t untouched = 0xDEADBEEF;
  constexpr int width = 20, height = 14, stride = 23;
  std::vector<std::uint32_t> pixels(stride * height, untouched);
  for (int y = 0; y < height; ++y) std::fill_n(&pixels[static_cast<std::size_t>(y * stride)], width, 0u);
  render::drawPixels(scene, text, 2, pixels.data(), stride * sizeof(std::uint32_t));
  const Pixels png = draw(scene, 2);
  for (int i = 0; i < stride * height; ++i) {
    const std::uint32_t pixel = pixels[static_cast<std::size_t>(i)];
    if (i % stride >= width) {
      EXPECT_EQ(pixel, untouched);
      continue;
    }
    const auto [r, g, b, alpha] = png.at(i % stride, i / stride);
    EXPECT_EQ(pixel >> 24, alpha);
    const double premultiplied[] = {r * alpha / 255.0, g * alpha / 255.0, b * alpha / 255.0};
    for (int channel = 0; channel < 3; ++channel)
      EXPECT_NEAR(pixel >> (16 - 8 * channel) & 0xFF, premultiplied[channel], 0.51) << i;
  }
}

TEST(Image, vectorFilesHoldOutlinesAndAreTheSameEveryTime) {
  const auto has = [](const std::string& file, const char* text) {
    return file.find(text) != std::string::npos;
  };
  const std::string svg = encode(tile(), ImageFormat::svg, 2), pdf = encode(tile(), ImageFormat::pdf, 2);
  EXPECT_TRUE(has(svg, R"(width="20" height="14")") && !has(svg, "<image"));
  EXPECT_TRUE(has(pdf, "/MediaBox [ 0 0 20 14 ]") && has(pdf, "Quicksand"));
  EXPECT_FALSE(has(pdf, "/Image") || has(pdf, "/CreationDate"));
  EXPECT_TRUE(encode(tile(), ImageFormat::svg, 2) == svg && encode(tile(), ImageFormat::pdf, 2) == pdf);
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
  // The mitre of a right angle is 1.41 line widths long, that of 9 degrees 12.7.
  const Path corner{{Path::Move{{10, 30}}, Path::Line{{30, 30}}, Path::Line{{30, 10}}}};
  EXPECT_EQ(marks(ui::StrokePath{corner, {10}, red}, {{34, 34}}), "#");
  const Path spike{{Path::Move{{0, 18}}, Path::Line{{14, 19.1}}, Path::Line{{0, 20.2}}}};
  EXPECT_EQ(marks(ui::StrokePath{spike, {2}, red}, {{19, 19}}), ".");
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
