#include "tarno/ui/layout.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

#include "support/fake_measurer.hpp"
#include "tarno/ui/description/path_bounds.hpp"
#include "tarno/ui/description/scene_description.hpp"
#include "tarno/ui/description/view_description.hpp"
#include "tarno/ui/layout/sizing.hpp"

using namespace ui;

namespace {

const View filler = Capsule{RoundedCornerStyle::continuous}.fill(black);

View box(double width, double height = 10) { return filler.frame({.width = width, .height = height}); }
View word(const std::string& text) { return Text(text).font(Font::system(10)); }
template <class... Views>
View row(const Views&... views) {
  return HStack({.spacing = 0}, views...);
}

Scene laidOut(const View& view, Size size, double margin = 0) {
  FakeMeasurer measurer;
  return layout(view, {.size = size, .contentMargin = margin, .cornerRadius = 22}, measurer);
}

/// Returns "[x,y widthxheight]", rounded to a millionth.
std::string written(const Rect& rect) {
  const auto rounded = [](double length) { return std::round(length * 1e6) / 1e6 + 0; };
  std::ostringstream text;
  text << '[' << rounded(rect.origin.x) << ',' << rounded(rect.origin.y) << ' ' << rounded(rect.size.width)
       << 'x' << rounded(rect.size.height) << ']';
  return text.str();
}

/// Returns the rectangles of the fills and texts in order, each with its anchor if it has one.
std::string drawn(const Scene& scene) {
  std::string result;
  for (const SceneItem& item : scene.items) {
    if (const auto* fill = std::get_if<FillPath>(&item)) {
      result += written(bounds(fill->path));
      if (fill->anchor) result += '@' + written({*fill->anchor, {}});
    }
    if (const auto* text = std::get_if<TextRun>(&item)) result += written(text->box);
  }
  return result;
}

void check(std::initializer_list<std::tuple<View, Size, Size>> cases) {
  for (const auto& [view, proposal, expected] : cases) {
    FakeMeasurer measurer;
    LayoutPass pass{measurer};
    const Size size = sizeThatFits(view, Environment{}, proposal, pass);
    EXPECT_NEAR(size.width, expected.width, 1e-9) << outline(describe(view)) << proposal.width;
    EXPECT_NEAR(size.height, expected.height, 1e-9) << outline(describe(view)) << proposal.width;
  }
}

void check(std::initializer_list<std::tuple<const char*, View, Size, const char*>> cases) {
  for (const auto& [what, view, container, expected] : cases)
    EXPECT_EQ(drawn(laidOut(view, container)), expected) << what;
}

TEST(Layout, SharesAStacksLengthFromTheLeastFlexibleChildToTheMost) {
  const View limited = filler.frame({.maxWidth = 20, .maxHeight = 10});
  const View nested = HStack({.spacing = 4}, box(6), filler);
  check({{"equal shares", HStack({}, filler, filler), {100, 10}, "[0,0 46x10][54,0 46x10]"},
         {"rigid first, though last", row(filler, box(70)), {100, 10}, "[0,0 30x10][30,0 70x10]"},
         {"a maximum leaves the rest", row(filler, limited), {100, 10}, "[0,0 80x10][80,0 20x10]"},
         {"a text takes its own", row(filler, word("abcd")), {100, 12}, "[0,0 80x12][80,0 20x12]"},
         {"nested", row(nested, box(30)), {100, 10}, "[0,0 6x10][10,0 60x10][70,0 30x10]"},
         {"too much, on both sides", row(box(80), box(60)), {100, 10}, "[-20,0 80x10][60,0 60x10]"},
         {"tight", HStack({.spacing = 30}, box(10), filler), {20, 10}, "[-10,0 10x10][30,0 0x10]"},
         {"down", VStack({.spacing = 5}, filler, box(10, 25)), {10, 100}, "[0,0 10x70][0,75 10x25]"}});
}

TEST(Layout, AlignsChildrenInTheLargestOfThem) {
  const auto framed = [](HorizontalAlignment at) { return box(30).frame({.width = 20, .alignment = at}); };
  const View shared = row(Text("a"), Text("b"));
  const View fonts = ZStack(shared.font(Font::system(10)), shared.font(Font::system(20)));
  const FrameOptions greedy{.maxWidth = infinity, .maxHeight = infinity, .alignment = leading};
  const View column = VStack({.alignment = leading}, box(30), box(10));
  check({{"side by side", HStack({}, box(10, 30), box(10)), {28, 30}, "[0,0 10x30][18,10 10x10]"},
         {"in a column, leading", column, {30, 28}, "[0,0 30x10][0,18 10x10]"},
         {"layers", ZStack(box(40, 20), box(10, 30)), {60, 60}, "[10,20 40x20][25,15 10x30]"},
         {"too large for a frame, leading", framed(leading), {20, 10}, "[0,0 30x10]"},
         {"too large for a frame", framed(center), {20, 10}, "[-5,0 30x10]"},
         {"a flexible frame", box(30).frame(greedy), {100, 50}, "[0,20 30x10]"},
         {"one row in two fonts", fonts, {30, 24}, "[10,6 5x12][15,6 5x12][5,0 10x24][15,0 10x24]"},
         {"padding around what grows", filler.padding(EdgeSet::horizontal, 8), {40, 10}, "[8,0 24x10]"}});
}

TEST(Layout, SizesFramesByTheProposal) {
  const View text = word("aaaa bbbb");  // 45 points wide, or 20 on two lines
  const Size all{infinity, infinity};
  check({{Text("ab"), all, {15, 18}},
         {filler.frame({.maxWidth = 50}), {100, 7}, {50, 7}},
         {filler.frame({.maxWidth = 50}), {40, 7}, {40, 7}},
         {box(60).frame({.maxWidth = 50}), {100, 7}, {60, 10}},
         {box(60).frame({.maxHeight = infinity}), {40, 70}, {60, 70}},
         {text.frame({.height = 30}), {20, 0}, {20, 30}},
         {text.frame({.width = 30, .maxWidth = 100}), all, {30, 24}},
         {text.frame({.maxWidth = 30}), {100, 100}, {30, 24}},
         {text.frame({.maxWidth = 100}), {60, 0}, {60, 12}},
         {text.font(Font::system(0)), {infinity, 0}, {45, 12}},
         {text.padding(EdgeSet::horizontal, 10), {40, 40}, {40, 24}},
         {text.padding(EdgeSet::horizontal, 30), {40, 40}, {60, 12}},
         {box(20).padding(EdgeSet::vertical, -30), {1, 1}, {20, 0}},
         {Image("no.such.symbol").font(Font::system(8)), all, {8, 8}},
         {HStack({}), {100, 100}, {0, 0}},
         {HStack({}, word("abcd"), word("efghij"), std::optional<View>{}), all, {58, 12}}});
}

TEST(Layout, ShrinksTextsToTheSmallestScaleAndThenCutsThem) {
  const View oneLine = word("abcdefghij").lineLimit(1), twoLines = word("aaaa bbbb cccc").lineLimit(2);
  const View small = oneLine.minimumScaleFactor(0.85), smallTwo = twoLines.minimumScaleFactor(0.85);
  check({{small, {infinity, 0}, {50, 12}},
         {oneLine, {50 - 1e-10, 0}, {50, 12}},
         {oneLine, {47, 0}, {45, 12}},
         {small, {49.9, 0}, {49.9, 12}},
         {small, {42.5, 0}, {42.5, 12}},
         {small, {40, 0}, {38.25, 12}},
         {smallTwo, {45, 0}, {45, 24}},
         {smallTwo, {44, 0}, {43.734375, 23.325}},
         {smallTwo, {43.5, 0}, {43.3125, 23.1}},
         {smallTwo, {20, 0}, {17, 20.4}},
         {word("ab\ncd\nef").lineLimit(2).minimumScaleFactor(0.85), {100, 0}, {15, 24}},
         {word("aaaa bbbb cccc").minimumScaleFactor(0.85), {20, 0}, {20, 36}},
         {word("ab\ncd").lineLimit(1), {100, 0}, {25, 12}},
         {word("ab\ncd\nef").lineLimit(2), {infinity, 0}, {15, 24}}});
}

TEST(Layout, TurnsStrokesAboutTheFramesCentre) {
  const View arc = Circle{}.trim(0, 0.5).stroke(black, {}).frame({.width = 40, .height = 40});
  const View both = row(arc, word("abcd"), arc.rotationEffect(Angle::degrees(30)));
  const Scene turned = laidOut(both.rotationEffect(Angle::degrees(90)), {100, 100});
  const auto outlineAt = [&](std::size_t item) { return outline(describe(turned).children.at(item)); };
  EXPECT_TRUE(outlineAt(0).ends_with("centerX=50 centerY=20 radius=20 start=90 end=270\n")) << outlineAt(0);
  EXPECT_TRUE(outlineAt(2).ends_with("centerX=50 centerY=80 radius=20 start=120 end=300\n")) << outlineAt(2);
  EXPECT_EQ(drawn(turned), "[40,44 20x12]");
}

TEST(Layout, DrawsABoxForAnUnknownSymbolAndNothingForAnEmptyArc) {
  const View image = Image("no.such.symbol").font(Font::system(10)).foregroundStyle(white);
  const StrokePath box{Path::roundedRect({{1.2, 1.2}, {7.6, 7.6}}, 1.6), {.lineWidth = 0.8}, white};
  EXPECT_EQ(laidOut(image, {10, 10}).items.at(0), SceneItem{box});
  const View empty = Circle{}.trim(0.5, 0.2).stroke(black, {});
  EXPECT_EQ(laidOut(empty, {9, 9}).items.at(0), (SceneItem{StrokePath{{}, {}, black}}));
}

/// Returns a view in which every number is `x`.
View viewOf(double x) {
  const Color color{.red = x, .green = x, .blue = x, .alpha = x};
  const View some = HStack({}, Text("ab cd"), Image("clock"), Image("no.such.symbol"), filler);
  const View arc = Circle{}.trim(x, x / 2).trim(0, x).stroke(color, {.lineWidth = x});
  const View across = HStack({.spacing = x}, some, arc.rotationEffect({x}), some.font(Font::system(x)));
  const View down = VStack({.spacing = x}, across, some, Text("ef"), Circle{}.fill(color));
  const View padded = down.padding(EdgeSet::horizontal, x).padding(EdgeSet::vertical, x);
  const View fixed = padded.frame({.width = x, .height = x});
  const View flexible = padded.frame({.maxWidth = x, .maxHeight = x});
  const View text = flexible.font(Font::system(x)).lineLimit(1).minimumScaleFactor(x);
  return ZStack(text, down).background(fixed).foregroundStyle(color).containerBackground(color);
}

TEST(Layout, EndsWithFiniteGeometryForAnyNumbers) {
  for (const double x :
       {double{NAN}, infinity, -infinity, 1e300, -1e300, 1e9, 40.0, 0.3, 1e-9, 5e-324, -0.0, -1.0}) {
    SCOPED_TRACE(x);
    for (const auto& container : {ContainerShape{{170, 170}, 16, 22}, ContainerShape{{x, x}, x, x}}) {
      FakeMeasurer measurer;
      const Scene scene = layout(viewOf(x), container, measurer);
      EXPECT_EQ(scene, Scene{scene}) << "a NaN is unequal to itself";
      EXPECT_EQ(outline(describe(scene)).find("inf"), std::string::npos);
    }
  }
  EXPECT_EQ(laidOut(filler, {1e9, -4}).size, (Size{longestLength, 0}));
}

TEST(Layout, AnnouncesTextsAndLabelledViews) {
  const View both = row(word("ab"), word("cd"));
  const View label = Label("ab", "no.such.symbol").font(Font::system(8));
  const std::pair<View, const char*> cases[] = {
      {both, "ab[0,0 10x12]cd[10,0 10x12]"},
      {word("abcdefgh").lineLimit(1), "abcdefgh[0,0 20x12]"},
      {both.accessibilityElement("inner").accessibilityElement("outer"), "image outer[0,0 20x12]"},
      {both.accessibilityElement("").accessibilityHidden(), ""},
      {row(word(""), Image("clock")), ""},
      {label.frame({.width = 20, .height = 12}), "ab[12,1.2 8x9.6]"}};
  for (const auto& [view, expected] : cases) {
    std::string announced;
    for (const auto& [role, text, frame] : laidOut(view, {20, 12}).accessibility)
      announced += (role == AccessibilityElement::Role::image ? "image " : "") + text + written(frame);
    EXPECT_EQ(announced, expected) << outline(describe(view));
  }
}

TEST(Layout, FillsTheContainerToItsEdgeAndKeepsTheViewInsideTheMargin) {
  const Rect whole{{0, 0}, {170, 100}};
  const View white = filler.containerBackground(ui::white);
  const Scene scene = laidOut(white, whole.size, 16);
  EXPECT_EQ(drawn(scene), "[0,0 170x100][16,16 138x68]");
  EXPECT_EQ(scene.items.at(0), (SceneItem{FillPath{Path::roundedRect(whole, 22), ui::white}}));
  for (const View& inside : {ZStack(white), filler.containerBackground(black).containerBackground(ui::white)})
    EXPECT_EQ(laidOut(inside, whole.size, 16), scene) << outline(describe(inside));
  EXPECT_TRUE(drawn(laidOut(filler, {20, 20}, 30)).ends_with(" 0x0]"));
}

}  // namespace
