#include "tarno/render/image.hpp"

#include <gtest/gtest.h>

#include <cmath>

#include "support/pixels.hpp"
#include "tarno/render/png.hpp"

namespace {

using render::ImageFormat;
using ui::Path;

constexpr ui::Color red = ui::Color::sRGB(1, 0, 0);

std::string encode(const ui::Scene& scene, ImageFormat format, double scale = 1) {
  render::TextEngine text;
  return render::encodeImage(scene, text, format, scale);
}

bool has(const std::string& file, const std::string& text) { return file.find(text) != std::string::npos; }

/// Returns a scene: a text on a pane with round corners, and a stripe over one corner.
ui::Scene tile() {
  const ui::Rect whole{{0, 0}, {10, 7}};
  const ui::TextRun text{"Mac", ui::Font::system(2).rounded(), red.opacity(0.5), {{2, 1}, {5, 2}}, 1.5};
  const ui::FillPath pane{Path::roundedRect(whole, 3), ui::Color::sRGB(1, 1, 0).opacity(0.5)};
  const ui::FillPath stripe{Path::roundedRect({{4, 0}, {6, 1}}, 0), ui::Color::sRGB(0.5, 0.08, 2)};
  return {whole.size, {pane, text, stripe}, {}};
}

TEST(Image, sizesAreWholePixelsThatCoverThePointsOrAreRefused) {
  const std::tuple<ui::Size, double, std::optional<render::PixelSize>> table[] = {
      {{170, 7}, 1.1, {{187, 8}}}, {{10, 7}, 0.5, {{5, 4}}},      {{170, 170}, 0.7, {{119, 119}}},
      {{0, -3}, 1, {{1, 1}}},      {{16384, 1}, 1, {{16384, 1}}}, {{16385, 1}, 1, {}},
      {{1, 1e9}, 1, {}},           {{1, 1}, ui::infinity, {}},    {{std::nan(""), 1}, 1, {}}};
  for (const auto& [points, scale, pixels] : table)
    if (pixels)
      EXPECT_EQ(render::pixelSize(points, scale), pixels) << scale;
    else
      for (const auto format : {ImageFormat::png, ImageFormat::svg})
        EXPECT_THROW(encode({points, {}, {}}, format, scale), render::ImageError) << scale;
}

TEST(Image, hasTheColoursOfTheSceneAndKeepsToItsRows) {
  render::TextEngine text;
  constexpr std::size_t width = 20, height = 14, stride = 23;
  std::vector<std::uint32_t> pixels(stride * height);
  render::drawPixels(tile(), text, 2, pixels.data(), stride * sizeof(std::uint32_t));
  EXPECT_EQ(pixels.at(13 * stride), 0u);
  EXPECT_EQ(pixels.at(9 * stride + 10), 0x80808000);
  EXPECT_EQ(pixels.at(width - 1), 0xFF8014FF);
  for (std::size_t y = 0; y < height; ++y) EXPECT_EQ(pixels.at(y * stride + width), 0u);
}

TEST(Image, pngSaysItsColoursColourSpaceAndResolution) {
  const std::string png = encode(tile(), ImageFormat::png, 2);
  EXPECT_EQ(Pixels::decode(png).at(10, 9), (Pixels::Pixel{255, 255, 0, 128}));
  EXPECT_TRUE(has(png, std::string("sRGB\0", 5)));
  // 144 dots per inch are 5669 dots per metre.
  EXPECT_TRUE(has(png, std::string("pHYs\0\0\x16\x25\0\0\x16\x25\x01", 13)));
  EXPECT_EQ(render::unpremultiplied(0x80402001), 0x80804002);
}

TEST(Image, vectorFilesHoldOutlinesAndWordsAndAreTheSameEveryTime) {
  const auto file = [](ImageFormat format) {
    render::TextEngine text;
    ui::Scene scene = tile();
    scene.accessibility = {{.label = "a < b"}, {.label = "Mac\x01 surface7\uFFFE"}};
    return encodeImage(scene, text, format, 2, "T &\t\"t\"");
  };
  const std::string svg = file(ImageFormat::svg), pdf = file(ImageFormat::pdf);
  EXPECT_TRUE(has(svg, R"(width="20" height="14" viewBox="0 0 20 14")"));
  EXPECT_TRUE(has(svg,
                  " role=\"img\">\n<title>T &amp; &quot;t&quot;</title>\n"
                  "<desc>a &lt; b, Mac  surface7\uFFFD</desc>\n<"));
  EXPECT_FALSE(has(svg, "<image"));
  EXPECT_FALSE(has(encode(tile(), ImageFormat::svg), "<title>"));
  EXPECT_TRUE(file(ImageFormat::svg) == svg);
  EXPECT_TRUE(file(ImageFormat::pdf) == pdf);
  const auto written = [](const std::string& text) {  // noncharacters, which a file must not contain
    const ui::TextRun run{text, ui::Font::system(12), red, {{0, 0}, {90, 20}}, 15};
    return encode({{90, 20}, {run}, {}}, ImageFormat::pdf);
  };
  EXPECT_TRUE(written("\uFFFE\uFDD0\uFDEF\U0010FFFF") == written("\uFFFD\uFFFD\uFFFD\uFFFD"));
}

TEST(Image, outlinesAreFittedToPixelsButNotInVectorFiles) {
  const auto draw = [](ImageFormat format, std::optional<ui::Point> anchor, bool fits) {
    const ui::FillPath pane{Path::roundedRect({{5.3, 5.6}, {10.4, 9.1}}, 0), red, anchor, fits};
    return encode({{20, 20}, {pane}, {}}, format);
  };
  const ui::Point corner{5.3, 5.6};
  EXPECT_TRUE(draw(ImageFormat::svg, corner, true) == draw(ImageFormat::svg, {}, false));
  const auto pixels = Pixels::decode(draw(ImageFormat::png, {}, true));
  for (int i = 0; i < 20; ++i) {
    EXPECT_EQ(pixels.at(i, 10)[3], i >= 5 && i < 16 ? 255 : 0) << i;
    EXPECT_EQ(pixels.at(10, i)[3], i >= 5 && i < 15 ? 255 : 0) << i;
  }
}

}  // namespace
