#include "render/image.hpp"

#include <gtest/gtest.h>

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

TEST(Image, pngHasTheSizeAndTheColoursOfTheScene) {
  using Sides = std::pair<int, int>;
  for (const auto& [scale, sides] :
       {std::pair{1.0, Sides{10, 7}}, {2.0, {20, 14}}, {1.1, {11, 8}}, {0.5, {5, 4}}}) {
    const Pixels pixels = draw(tile(), scale);
    EXPECT_EQ((Sides{pixels.width, pixels.height}), sides) << scale;
  }
  const Pixels pixels = draw(tile(), 2);
  EXPECT_EQ(pixels.at(0, 13), (Pixels::Pixel{0, 0, 0, 0}));
  EXPECT_EQ(pixels.at(10, 9), (Pixels::Pixel{255, 255, 0, 128}));
  EXPECT_EQ(pixels.at(19, 0), (Pixels::Pixel{255, 0, 0, 255}));
}

TEST(Image, refusesWhatNoFileShouldHold) {
  for (const double scale : {46.0, 1e300})
    EXPECT_THROW(encode({{364, 170}, {}, {}}, ImageFormat::png, scale), render::ImageError);
  EXPECT_EQ(draw({{0, 0}, {}, {}}).width, 1);
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
