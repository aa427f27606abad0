#include "tarno/ui/view.hpp"

#include <gtest/gtest.h>

#include <cmath>

#include "support/fake_measurer.hpp"
#include "tarno/ui/description/path_bounds.hpp"
#include "tarno/ui/description/scene_description.hpp"
#include "tarno/ui/description/view_description.hpp"
#include "tarno/ui/layout.hpp"

using namespace ui;

namespace {

/// Returns a view that contains every kind of view, with usual and unusual values.
View tile(const std::string& title) {
  const View arc =
      Circle{}.trim(0.08, 0.92).stroke(white.opacity(0.5), {.lineWidth = 6, .lineCap = LineCap::round});
  const View dial = ZStack(Circle{}.stroke(black, {.lineWidth = 6}), arc.rotationEffect(Angle::degrees(126)),
                           HStack({}).font(Font::system(TextStyle::title3)));
  const View pill = Label(title, "no.such.symbol")
                        .font(Font::system(11).rounded().weight(FontWeight::medium))
                        .foregroundStyle(Color::sRGB(0.18, 0.56, 0.576))
                        .lineLimit(1)
                        .minimumScaleFactor(0.85)
                        .padding(EdgeSet::horizontal, 8)
                        .padding(EdgeSet::vertical, -1e-9)
                        .background(Capsule{RoundedCornerStyle::continuous}.fill(black.opacity(0.12)));
  const View named = dial.frame({.width = 50, .maxHeight = 1e-9, .alignment = leading});
  return VStack({.alignment = leading, .spacing = 1.0 / 3}, named.accessibilityElement("Mac \"locked\""),
                std::optional<View>{}, pill.accessibilityHidden())
      .frame({.maxWidth = infinity, .maxHeight = infinity})
      .containerBackground(white);
}

TEST(View, IsEqualByContent) {
  EXPECT_EQ(tile("now"), tile("now"));
  EXPECT_NE(tile("now"), tile("then"));
}

TEST(View, KeepsItsNumbersWithinTheirBounds) {
  const View text = Text("text");
  const Circle half = Circle{}.trim(0.5, 7);
  const std::pair<View, View> pairs[] = {
      {text.font(Font::system(0.99)), text.font(Font::system(0))},
      {text.foregroundStyle({.red = -1, .green = 2, .blue = NAN, .alpha = 9}),
       text.foregroundStyle(Color::sRGB(0, 1, 0))},
      {text.lineLimit(0), text.lineLimit(1)},
      {text.lineLimit(1'000'000), text.lineLimit(unlimitedLines)},
      {text.minimumScaleFactor(-1), text.minimumScaleFactor(0.01)},
      {text.frame({.width = -1, .height = infinity, .maxWidth = NAN, .maxHeight = -1}), text.frame({})},
      {text.rotationEffect({NAN}), text.rotationEffect({4 * std::numbers::pi})},
      {half.trim(0.5, NAN).fill(black), Circle{}.trim(0.75, 0.75).fill(black)},
      {half.trim(0.5, 1).fill(black), Circle{}.trim(0.75, 1).fill(black)},
      {half.trim(1, 0).fill(black), Circle{}.trim(1, 1).fill(black)}};
  for (const auto& [given, kept] : pairs) EXPECT_EQ(given, kept) << outline(describe(given));
  EXPECT_NE(text.font(Font::system(1)), text.font(Font::system(0)));
  EXPECT_NE(text.frame({.maxWidth = infinity}), text.frame({.maxWidth = 10'000}));
}

TEST(Description, OfAViewReadsAsItWasWritten) {
  EXPECT_EQ(outline(describe(tile("now\n"))), R"(containerBackground color=#FFFFFF
  frame maxWidth=infinity maxHeight=infinity
    VStack alignment=leading spacing=0.333
      accessibilityElement label="Mac \"locked\""
        frame width=50 maxHeight=0 alignment=leading
          ZStack
            Circle stroke=#000000 lineWidth=6
            rotationEffect degrees=126
              Circle from=0.08 to=0.92 stroke=#FFFFFF@0.5 lineWidth=6 lineCap=round
            font size=20
              HStack spacing=8
      accessibilityHidden
        background
          padding edges=vertical length=0
            padding edges=horizontal length=8
              minimumScaleFactor factor=0.85
                lineLimit lines=1
                  foregroundStyle color=#2E8F93
                    font size=11 weight=medium design=rounded
                      HStack spacing=4
                        Image systemName="no.such.symbol"
                        Text text="now\n"
          Capsule style=continuous fill=#000000@0.12
)");
}

TEST(Description, OfASceneListsWhatIsDrawn) {
  FakeMeasurer measurer;
  const View text = Text("a \\ \x1B\x7F b").font(Font::system(10).weight(FontWeight::semibold)).lineLimit(1);
  const View arc = Circle{}.trim(0, 0.5).stroke(white.opacity(0.5), {.lineCap = LineCap::round});
  const View all = ZStack(Circle{}.fill(black), Circle{}.stroke(black, {}), arc, text);
  const Scene scene = layout(all.containerBackground(white), {.size = {20, 12}}, measurer);
  EXPECT_EQ(outline(describe(scene)), R"(Scene width=20 height=12
  fill color=#FFFFFF outline=path x=0 y=0 width=20 height=12
  fill color=#000000 outline=circle centerX=10 centerY=6 radius=6
  stroke color=#000000 lineWidth=1 outline=circle centerX=10 centerY=6 radius=6
  stroke color=#FFFFFF@0.5 lineWidth=1 lineCap=round outline=arc centerX=10 centerY=6 radius=6 start=0 end=180
  text text="a \\ \u001b\u007f b" font="10 semibold" color=#000000 x=0 y=0 width=20 height=12 baseline=9 maxLines=1 truncated=true
)");
  EXPECT_EQ(outline(describeAccessibility(scene)), R"(accessibility
  staticText label="a \\ \u001b\u007f b" x=0 y=0 width=20 height=12
)");
}

TEST(Path, RoundsCornersByAtMostHalfOfTheShorterSideAndClosesWholeCirclesOnly) {
  const Rect rect{{1, 2}, {20, 10}};
  EXPECT_EQ(Path::roundedRect(rect, 22), Path::roundedRect(rect, 5));
  EXPECT_EQ(Path::roundedRect(rect, -1), Path::roundedRect(rect, 0));
  for (const auto& [from, to, elements] : {std::tuple{0.0, 1.0, 3u}, {0.0, 0.95, 2u}, {0.05, 1.0, 2u}})
    EXPECT_EQ(Path::circle(rect, from, to).elements.size(), elements) << from << " to " << to;
}

TEST(Path, BoundsAreThoseOfTheCurveItself) {
  const Path arc{{Path::Move{{10, 0}}, Path::Arc{{0, 0}, 10, {}, Angle::degrees(-150)}}};
  EXPECT_NEAR(bounds(arc).origin.x, -8.66, 1e-3);
  EXPECT_NEAR(bounds(arc).origin.y, -10, 1e-9);
  EXPECT_NEAR(bounds(arc).bottom(), 0, 1e-9);
  EXPECT_EQ(bounds({}), Rect{});
}

}  // namespace
