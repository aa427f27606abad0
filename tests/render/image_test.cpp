#include "render/image.hpp"

#include <gtest/gtest.h>

#include "render/pixels.hpp"

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

/// The opacity at each of `points` when `item` alone is drawn on 40 x 40 points.
std::vector<int> opacities(const ui::SceneItem& item, std::initializer_list<std::pair<int, int>> points) {
  const Pixels pixels = draw({{40, 40}, {item}, {}});
  std::vector<int> result;
  for (const auto& [x, y] : points) result.push_back(pixels.at(x, y)[3]);
  return result;
}

using Opacities = std::vector<int>;

TEST(Image, pngHasTheSizeAndTheColoursOfTheScene) {
  const ui::Scene scene{{10, 7},
                        {ui::BeginClip{Path::roundedRect({{0, 0}, {10, 7}}, 3)},
                         ui::FillPath{Path::rect({{0, 0}, {10, 7}}), ui::Color::sRGB(1, 1, 0).opacity(0.5)},
                         ui::EndClip{}, ui::FillPath{Path::rect({{4, 0}, {6, 1}}), red}},
                        {}};
  const struct {
    double scale;
    int width, height;
  } sizes[] = {{1, 10, 7}, {2, 20, 14}, {1.1, 11, 8}, {0.5, 5, 4}};
  for (const auto& size : sizes) {
    const Pixels pixels = draw(scene, size.scale);
    EXPECT_EQ(pixels.width, size.width) << size.scale;
    EXPECT_EQ(pixels.height, size.height) << size.scale;
  }
  const Pixels pixels = draw(scene, 2);
  EXPECT_EQ(pixels.at(0, 13), (Pixels::Pixel{0, 0, 0, 0}));
  EXPECT_EQ(pixels.at(10, 8), (Pixels::Pixel{255, 255, 0, 128}));
  EXPECT_EQ(pixels.at(19, 0), (Pixels::Pixel{255, 0, 0, 255}));  // after the clip has ended
}

TEST(Image, refusesWhatNoFileShouldHold) {
  EXPECT_THROW(encode({{364, 170}, {}, {}}, ImageFormat::png, 46), render::ImageError);
  EXPECT_THROW(encode({{364, 170}, {}, {}}, ImageFormat::png, 1e300), render::ImageError);
  EXPECT_EQ(draw({{0, 0}, {}, {}}).width, 1);
}

TEST(Image, vectorFilesHoldOutlinesAndAreTheSameEveryTime) {
  render::TextEngine text;
  const ui::Font font = ui::Font::system(12).rounded();
  const auto metrics = text.measure("Kivo's Mac", font, {}, 1);
  const ui::Scene scene{
      {100, 50},
      {ui::BeginClip{Path::roundedRect({{0, 0}, {100, 50}}, 9)},
       ui::FillPath{Path::rect({{0, 0}, {100, 50}}), ui::white.opacity(0.5)},
       ui::TextRun{"Kivo's Mac", font, red.opacity(0.5), {{9, 9}, metrics.size}, metrics.baseline},
       ui::EndClip{}},
      {}};
  const std::string svg = encode(scene, ImageFormat::svg, 2);
  EXPECT_NE(svg.find(R"(width="200" height="100")"), std::string::npos) << svg.substr(0, 300);
  EXPECT_EQ(svg.find("<image"), std::string::npos);
  const std::string pdf = encode(scene, ImageFormat::pdf, 2);
  EXPECT_NE(pdf.find("/MediaBox [ 0 0 200 100 ]"), std::string::npos);
  EXPECT_NE(pdf.find("Quicksand"), std::string::npos);
  EXPECT_EQ(pdf.find("/Image"), std::string::npos);
  EXPECT_EQ(pdf.find("/CreationDate"), std::string::npos);
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(encode(scene, ImageFormat::svg, 2), svg);
    EXPECT_EQ(encode(scene, ImageFormat::pdf, 2), pdf);
  }
}

TEST(Painter, fillsInsideByTheNonzeroRule) {
  Path twice = Path::rect({{0, 0}, {40, 40}});
  const Path inner = Path::rect({{10, 10}, {20, 20}});
  twice.elements.insert(twice.elements.end(), inner.elements.begin(), inner.elements.end());
  EXPECT_EQ(opacities(ui::FillPath{twice, red}, {{20, 20}, {5, 5}}), (Opacities{255, 255}));
}

TEST(Painter, strokesWithCapsAndMitres) {
  const Path line{{Path::Move{{10, 20}}, Path::Line{{30, 20}}}};
  const auto stroke = [](Path path, ui::LineCap cap) { return ui::StrokePath{path, {10, cap}, red}; };
  // Before the end, where a round cap reaches, and in the corner that it leaves out.
  EXPECT_EQ(opacities(stroke(line, ui::LineCap::butt), {{29, 16}, {32, 20}, {34, 15}}),
            (Opacities{255, 0, 0}));
  EXPECT_EQ(opacities(stroke(line, ui::LineCap::round), {{29, 16}, {32, 20}, {34, 15}}),
            (Opacities{255, 255, 0}));
  // The mitre of a right angle is 1.41 line widths long, that of 9 degrees 12.7.
  const Path corner{{Path::Move{{10, 30}}, Path::Line{{30, 30}}, Path::Line{{30, 10}}}};
  EXPECT_EQ(opacities(stroke(corner, ui::LineCap::butt), {{34, 34}}), (Opacities{255}));
  const Path spike{{Path::Move{{0, 18}}, Path::Line{{14, 19.1}}, Path::Line{{0, 20.2}}}};
  EXPECT_EQ(opacities(ui::StrokePath{spike, {2, ui::LineCap::butt}, red}, {{19, 19}}), (Opacities{0}));
}

TEST(Painter, arcsRunClockwiseWhenTheirEndIsTheLarger) {
  const auto arc = [](double start, double end) {
    return ui::StrokePath{{{Path::Arc{{20, 20}, 15, Angle::degrees(start), Angle::degrees(end)}}}, {4}, red};
  };
  // Lower right, lower left, upper left, upper right.
  const auto corners = {std::pair{30, 30}, {9, 30}, {9, 9}, {30, 9}};
  EXPECT_EQ(opacities(arc(0, 90), corners), (Opacities{255, 0, 0, 0}));
  EXPECT_EQ(opacities(arc(90, 0), corners), (Opacities{255, 0, 0, 0}));
  EXPECT_EQ(opacities(arc(0, 270), corners), (Opacities{255, 255, 255, 0}));
  EXPECT_EQ(opacities(arc(0, -90), corners), (Opacities{0, 0, 0, 255}));
  EXPECT_EQ(opacities(arc(154.8, 457.2), corners), (Opacities{255, 0, 255, 255}));
  EXPECT_EQ(opacities(ui::StrokePath{Path::circle({{5, 5}, {30, 30}}), {4}, red}, corners),
            (Opacities{255, 255, 255, 255}));
}

}  // namespace
