#include "ui/layout.hpp"

#include <gtest/gtest.h>

#include <limits>

#include "ui/fake_measurer.hpp"
#include "ui/path_bounds.hpp"

using namespace ui;

namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

View box(double width, double height = 10) {
  return Capsule{RoundedCornerStyle::circular}.fill(black).frame({.width = width, .height = height});
}
View flexibleBox() { return Capsule{RoundedCornerStyle::circular}.fill(black); }
View word(const std::string& text) { return Text(text).font(Font::system(10)); }

Scene laidOut(const View& view, Size size, double margin = 0) {
  FakeMeasurer measurer;
  return layout(view, {.size = size, .contentMargin = margin}, measurer);
}

Size fitted(const View& view, const ProposedSize& proposal) {
  FakeMeasurer measurer;
  return sizeThatFits(view, proposal, measurer);
}

template <class Item>
std::vector<Item> all(const Scene& scene) {
  std::vector<Item> found;
  for (const SceneItem& item : scene.items)
    if (const auto* match = std::get_if<Item>(&item)) found.push_back(*match);
  return found;
}

/// The frames of what is drawn inside the container's clip, in order.
std::vector<Rect> frames(const Scene& scene) {
  std::vector<Rect> result;
  for (std::size_t i = 1; i + 1 < scene.items.size(); ++i) {
    const SceneItem& item = scene.items[i];
    if (const auto* fill = std::get_if<FillPath>(&item)) result.push_back(bounds(fill->path));
    if (const auto* stroke = std::get_if<StrokePath>(&item)) result.push_back(bounds(stroke->path));
    if (const auto* text = std::get_if<TextRun>(&item)) result.push_back(text->box);
  }
  return result;
}

void expectNear(const Rect& actual, const Rect& expected, const std::string& what) {
  EXPECT_NEAR(actual.origin.x, expected.origin.x, 1e-9) << what;
  EXPECT_NEAR(actual.origin.y, expected.origin.y, 1e-9) << what;
  EXPECT_NEAR(actual.size.width, expected.size.width, 1e-9) << what;
  EXPECT_NEAR(actual.size.height, expected.size.height, 1e-9) << what;
}

struct PlacingCase {
  std::string what;
  View view;
  Size container;
  std::vector<Rect> expected;
};

void check(const std::vector<PlacingCase>& cases) {
  for (const auto& [what, view, container, expected] : cases) {
    const std::vector<Rect> actual = frames(laidOut(view, container));
    ASSERT_EQ(actual.size(), expected.size()) << what;
    for (std::size_t i = 0; i < actual.size(); ++i) expectNear(actual[i], expected[i], what);
  }
}

TEST(Layout, SharesAStacksLengthFromTheLeastFlexibleChildToTheMost) {
  const View limited = flexibleBox().frame({.maxWidth = 20, .maxHeight = 10});
  const View nested = HStack({.spacing = 4}, box(6), flexibleBox());
  check({
      {"equal shares",
       HStack({}, flexibleBox(), flexibleBox()),
       {100, 10},
       {{{0, 0}, {46, 10}}, {{54, 0}, {46, 10}}}},
      {"rigid first, though it comes last",
       HStack({.spacing = 10}, flexibleBox(), box(70)),
       {100, 10},
       {{{0, 0}, {20, 10}}, {{30, 0}, {70, 10}}}},
      {"a maximum leaves the rest to others",
       HStack({.spacing = 0}, flexibleBox(), limited),
       {100, 10},
       {{{0, 0}, {80, 10}}, {{80, 0}, {20, 10}}}},
      {"a text takes what it needs",
       HStack({.spacing = 0}, flexibleBox(), word("abcd")),
       {100, 12},
       {{{0, 0}, {80, 12}}, {{80, 0}, {20, 12}}}},
      {"a nested stack counts as a whole",
       HStack({.spacing = 0}, nested, box(30)),
       {100, 10},
       {{{0, 0}, {6, 10}}, {{10, 0}, {60, 10}}, {{70, 0}, {30, 10}}}},
      {"too much sticks out on both sides",
       HStack({.spacing = 0}, box(80), box(60)),
       {100, 10},
       {{{-20, 0}, {80, 10}}, {{60, 0}, {60, 10}}}},
      {"less than the spacing",
       HStack({.spacing = 30}, box(10), flexibleBox()),
       {20, 10},
       {{{-10, 0}, {10, 10}}, {{30, 0}, {0, 10}}}},
      {"down a column",
       VStack({.spacing = 5}, flexibleBox(), box(10, 25)),
       {10, 100},
       {{{0, 0}, {10, 70}}, {{0, 75}, {10, 25}}}},
  });
}

TEST(Layout, AlignsChildrenInTheLargestOfThem) {
  const auto row = [](VerticalAlignment at) {
    return HStack({.alignment = at, .spacing = 0}, box(10, 30), box(10));
  };
  const auto column = [](HorizontalAlignment at) {
    return VStack({.alignment = at, .spacing = 0}, box(30), box(10));
  };
  const View layers = ZStack({}, box(40, 20), box(10, 30), flexibleBox().frame({.width = 6, .height = 6}));
  check({
      {"top", row(top), {20, 30}, {{{0, 0}, {10, 30}}, {{10, 0}, {10, 10}}}},
      {"centre", row(center), {20, 30}, {{{0, 0}, {10, 30}}, {{10, 10}, {10, 10}}}},
      {"bottom", row(bottom), {20, 30}, {{{0, 0}, {10, 30}}, {{10, 20}, {10, 10}}}},
      {"leading", column(leading), {30, 20}, {{{0, 0}, {30, 10}}, {{0, 10}, {10, 10}}}},
      {"trailing", column(trailing), {30, 20}, {{{0, 0}, {30, 10}}, {{20, 10}, {10, 10}}}},
      {"layers over one another",
       layers,
       {60, 60},
       {{{10, 20}, {40, 20}}, {{25, 15}, {10, 30}}, {{27, 27}, {6, 6}}}},
      {"a frame's content, which may be larger",
       box(30).frame({.width = 20, .alignment = trailing}),
       {20, 10},
       {{{-10, 0}, {30, 10}}}},
      {"a flexible frame",
       box(30).frame({.maxWidth = infinity, .maxHeight = infinity, .alignment = leading}),
       {100, 50},
       {{{0, 20}, {30, 10}}}},
      {"padding, and a background as large",
       box(30).padding(EdgeSet::horizontal, 8).padding(EdgeSet::vertical, 5).background(flexibleBox()),
       {46, 20},
       {{{0, 0}, {46, 20}}, {{8, 5}, {30, 10}}}},
      {"a circle inscribed",
       Circle{}.fill(black).frame({.width = 40, .height = 20}),
       {40, 20},
       {{{10, 0}, {20, 20}}}},
  });
}

TEST(Layout, SizesFramesByTheProposal) {
  struct Case {
    View view;
    ProposedSize proposal;
    Size expected;
  };
  const View text = word("aaaa bbbb");  // 45 wide, or 20 on two lines
  const std::vector<Case> cases{
      {flexibleBox(), {}, {10, 10}},
      {flexibleBox().frame({.maxWidth = infinity}), {100, 7}, {100, 7}},
      {flexibleBox().frame({.maxWidth = 50}), {100, 7}, {50, 7}},
      {box(60).frame({.maxWidth = 50}), {100, 7}, {60, 10}},
      {box(60).frame({.maxWidth = infinity}), {40, 7}, {60, 10}},
      {box(60).frame({.maxWidth = infinity}), {}, {60, 10}},
      {text.frame({.width = 30}), {}, {30, 24}},
      {text.frame({.maxWidth = 30}), {}, {20, 24}},
      {text.frame({.maxWidth = 30}), {100, 100}, {30, 24}},
      {text.frame({.maxWidth = 100}), {}, {45, 12}},
      {box(60).frame({.width = -1, .height = nan}), {}, {60, 10}},
      {text.font(Font::system(0)), {infinity, 0}, {45, 12}},
      {Text("x").font(Font::system(-3)), {}, {0, 0}},
      {HStack({}), {100, 100}, {0, 0}},
      {HStack({}, word("abcd"), word("efghij"), std::optional<View>{}), {}, {58, 12}},
  };
  for (std::size_t i = 0; i < cases.size(); ++i)
    EXPECT_EQ(fitted(cases[i].view, cases[i].proposal), cases[i].expected) << "case " << i;
}

TEST(Layout, LeavesTextsWholeInExactlyTheRoomTheyAskFor) {
  for (double size = 7; size < 30; size += 0.31) {
    const View row = HStack({.spacing = 0.1}, Text("a longer text"), Text("Locked"), Text("of three"));
    const View view = row.padding(EdgeSet::horizontal, size / 3).font(Font::system(size)).lineLimit(1);
    for (const TextRun& run : all<TextRun>(laidOut(view, fitted(view, {}))))
      EXPECT_TRUE(!run.truncated && run.font.size == size) << size;
  }
}

TEST(Layout, RotatesWhatIsDrawnAboutTheFramesCentre) {
  const auto square = [](const View& view) { return view.frame({.width = 40, .height = 40}); };
  const View dial = square(Circle{}.trim(0.08, 0.92).stroke(black, {.lineWidth = 6}));
  const auto arc = [&](const View& view) {
    return std::get<Path::Arc>(all<StrokePath>(laidOut(view, {100, 60})).at(0).path.elements.at(1));
  };
  const Path::Arc once = arc(dial.rotationEffect(Angle::degrees(126)));
  EXPECT_NEAR(once.start.inDegrees(), 154.8, 1e-9);
  EXPECT_NEAR(once.end.inDegrees(), 154.8 + 302.4, 1e-9);
  EXPECT_EQ(once.center, (Point{50, 30}));
  EXPECT_EQ(once.radius, 20);

  const View aside = HStack({.spacing = 0}, dial.rotationEffect(Angle::degrees(30)), box(20));
  const Path::Arc twice = arc(aside.rotationEffect(Angle::degrees(90)));
  EXPECT_NEAR(twice.start.inDegrees(), 28.8 + 120, 1e-9);
  EXPECT_NEAR(twice.center.x, 50, 1e-9);
  EXPECT_NEAR(twice.center.y, 20, 1e-9);

  const Scene scene = laidOut(word("abcd").rotationEffect(Angle::degrees(90)), {20, 12});
  const TextRun run = all<TextRun>(scene).at(0);
  expectNear(run.box, {{16, -4}, {20, 12}}, "turned text");
  EXPECT_NEAR(run.rotation.inDegrees(), 90, 1e-9);
  EXPECT_EQ(scene.accessibility.at(0).frame, (Rect{{0, 0}, {20, 12}}));

  EXPECT_TRUE(all<StrokePath>(laidOut(Circle{}.trim(0.5, 0.2).stroke(black, {}), {9, 9}))
                  .at(0)
                  .path.elements.empty());
}

TEST(Layout, AnnouncesTextsAndLabelledViews) {
  using Elements = std::vector<AccessibilityElement>;
  constexpr auto text = AccessibilityElement::Role::staticText;
  constexpr auto image = AccessibilityElement::Role::image;
  const View both = HStack({.spacing = 0}, word("ab"), word("cd"));
  const std::vector<std::pair<View, Elements>> cases{
      {both, {{text, "ab", {{0, 0}, {10, 12}}}, {text, "cd", {{10, 0}, {10, 12}}}}},
      {word("abcdefgh").lineLimit(1), {{text, "abcdefgh", {{0, 0}, {20, 12}}}}},
      {both.accessibilityElement("Mac locked"), {{image, "Mac locked", {{0, 0}, {20, 12}}}}},
      {both.accessibilityElement("inner").accessibilityElement("outer"),
       {{image, "outer", {{0, 0}, {20, 12}}}}},
      {both.accessibilityElement("").accessibilityHidden(), {}},
      {word(""), {}},
      {Image("clock"), {}},
      {Label("ab", "no.such.symbol")
           .font(Font::system(8))
           .frame({.width = 20, .height = 12, .alignment = trailing}),
       {{text, "ab", {{12, 1.2}, {8, 9.6}}}}},
  };
  for (std::size_t i = 0; i < cases.size(); ++i) {
    const Elements actual = laidOut(cases[i].first, {20, 12}).accessibility;
    ASSERT_EQ(actual.size(), cases[i].second.size()) << "case " << i;
    for (std::size_t k = 0; k < actual.size(); ++k) {
      EXPECT_EQ(actual[k].role, cases[i].second[k].role) << "case " << i;
      EXPECT_EQ(actual[k].label, cases[i].second[k].label) << "case " << i;
      expectNear(actual[k].frame, cases[i].second[k].frame, "case " + std::to_string(i));
    }
  }
}

TEST(Layout, FillsTheContainerToItsEdgeAndKeepsTheViewInsideTheMargin) {
  FakeMeasurer measurer;
  const ContainerShape shape{.size = {170, 100}, .contentMargin = 16, .cornerRadius = 22};
  const Rect whole{{0, 0}, {170, 100}};
  const View view = flexibleBox();
  for (const View& coloured : {view.containerBackground(white), view.containerBackground(white).frame({}),
                               ZStack({}, view.containerBackground(white))}) {
    const Scene scene = layout(coloured, shape, measurer);
    ASSERT_EQ(scene.items.size(), 4U);
    EXPECT_EQ(scene.items[0], SceneItem{BeginClip{Path::roundedRect(whole, 22)}});
    EXPECT_EQ(scene.items[1], (SceneItem{FillPath{Path::rect(whole), white}}));
    expectNear(bounds(std::get<FillPath>(scene.items[2]).path), {{16, 16}, {138, 68}}, "content");
    EXPECT_EQ(scene.items[3], SceneItem{EndClip{}});
  }
  EXPECT_EQ(layout(view.containerBackground(black).containerBackground(white), shape, measurer),
            layout(view.containerBackground(white), shape, measurer));
  EXPECT_EQ(layout(view, shape, measurer).items.size(), 3U);
  EXPECT_EQ(frames(laidOut(view, {20, 20}, 30)).at(0).size, (Size{0, 0}));
}

}  // namespace
