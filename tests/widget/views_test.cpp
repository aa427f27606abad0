#include <gtest/gtest.h>

#include "support/fake_measurer.hpp"
#include "ui/description/scene_description.hpp"
#include "ui/description/view_description.hpp"
#include "ui/layout.hpp"
#include "widget/views/dial_view.hpp"
#include "widget/views/widget_view.hpp"

namespace {

using namespace std::chrono;
using widgetkit::WidgetFamily;
using Snapshot = TarnoMacStatusSnapshot;
using Words = std::vector<std::string>;

constexpr foundation::Date now = sys_days{2026y / November / 16} + 15h;

/// The values of one attribute of all nodes of one name, in the order in which they are drawn.
void collect(const ui::Description& description, std::string_view name, std::string_view attribute,
             Words& found) {
  for (const auto& [key, value] : description.attributes) {
    if (description.name != name || key != attribute) continue;
    const double* const number = std::get_if<double>(&value);
    found.push_back(number != nullptr ? std::to_string(*number).substr(0, 6) : std::get<std::string>(value));
  }
  for (const auto& child : description.children) collect(child, name, attribute, found);
}

Words valuesOf(const ui::View& view, std::string_view name, std::string_view attribute) {
  Words found;
  collect(describe(view), name, attribute, found);
  return found;
}

ui::View tile(const TarnoMacWidgetEntry& entry, WidgetFamily family = WidgetFamily::systemMedium) {
  return TarnoMacWidgetView{entry}.body({.widgetFamily = family});
}

TEST(DialView, ShowsEveryStatus) {
  const std::string teal = "#2E8F93", coral = "#EE6D57", gold = "#D89B36", muted = "#61717D",
                    ring = "#D9E2E4@0.72";
  const std::string question = "questionmark.circle.fill", on = "#14666A", off = "#61717D@0.58";
  const struct {
    std::optional<Snapshot> status;
    std::string arcEnd, accent, icon, text;
    Words dots;
    std::string label;
  } cases[] = {
      {{}, "0.3150", muted, question, "No status", {off, off, off}, "Mac status unknown"},
      {Snapshot{}, "0.3150", muted, question, "Unknown", {off, off, off}, "Mac unknown"},
      {Snapshot{.deviceName = "Kivo's Mac",
                .status = TarnoMacStatus::locked,
                .facePresent = true,
                .companionPresent = false,
                .inputIdleSeconds = 12},
       "0.9200",
       teal,
       "lock.fill",
       "Locked",
       {on, off, off},
       "Kivo's Mac locked"},
      {Snapshot{.deviceName = "",
                .status = TarnoMacStatus::unlocked,
                .companionPresent = true,
                .inputIdleSeconds = 11.9},
       "0.5340",
       coral,
       "lock.open.fill",
       "Unlocked",
       {off, on, on},
       " unlocked"},
      {Snapshot{.status = TarnoMacStatus::locking, .stale = false},
       "0.7020",
       gold,
       "lock.rotation",
       "Locking",
       {off, off, off},
       "Mac locking"},
      {Snapshot{.status = TarnoMacStatus::unknown},
       "0.3150",
       muted,
       question,
       "Unknown",
       {off, off, off},
       "Mac unknown"},
      {Snapshot{.deviceName = "M", .status = TarnoMacStatus::locked, .facePresent = true, .stale = true},
       "0.3660",
       muted,
       "clock.badge.exclamationmark",
       "Status stale",
       {on, off, off},
       "M status stale"},
  };
  for (const auto& c : cases) {
    const auto dial = TarnoMacDialView{c.status, 124, true}.body();
    EXPECT_EQ(valuesOf(dial, "Circle", "to"), Words{c.arcEnd}) << c.label;
    EXPECT_EQ(valuesOf(dial, "Circle", "stroke"), (Words{ring, c.accent})) << c.label;
    EXPECT_EQ(valuesOf(dial, "Image", "systemName"),
              (Words{c.icon, "face.smiling", "applewatch", "cursorarrow.motionlines"}));
    EXPECT_EQ(valuesOf(dial, "Text", "text"), Words{c.text}) << c.label;
    EXPECT_EQ(valuesOf(dial, "foregroundStyle", "color"),
              (Words{c.accent, "#17212A", c.dots[0], c.dots[1], c.dots[2]}))
        << c.label;
    Words grounds{"#FFFFFF@0.58"};
    for (const auto& dot : c.dots) grounds.push_back(dot == on ? "#2E8F93@0.16" : "#D9E2E4@0.4");
    EXPECT_EQ(valuesOf(dial, "Circle", "fill"), grounds) << c.label;
    EXPECT_EQ(valuesOf(dial, "accessibilityElement", "label"), Words{c.label});
    EXPECT_NE(outline(describe(dial)).find("accessibilityHidden\n"), std::string::npos);
    EXPECT_EQ(valuesOf(dial, "minimumScaleFactor", "factor"), Words{"0.8500"});
    EXPECT_EQ(valuesOf(dial, "lineLimit", "lines"), Words{"1.0000"});
  }
}

TEST(DialView, MeasuresFollowItsSizeDownToTheirMinimums) {
  const struct {
    double size;
    Words lineWidths, fonts, frames, spacings;
  } cases[] = {
      {50,
       {"6.0000", "6.0000"},
       {"9.0000", "6.5000", "8.0000", "8.0000", "8.0000"},
       {"50.000", "35.000", "31.000", "18.000", "18.000", "18.000"},
       {"4.0000"}},
      {132,
       {"9.7680", "9.7680"},
       {"23.760", "17.160", "8.0000", "8.0000", "8.0000"},
       {"132.00", "92.400", "81.840", "18.000", "18.000", "18.000"},
       {"4.2240"}},
      {400,
       {"29.600", "29.600"},
       {"72.000", "52.000", "20.800", "20.800", "20.800"},
       {"400.00", "280.00", "248.00", "44.800", "44.800", "44.800"},
       {"12.800"}},
  };
  for (const auto& c : cases) {
    const auto dial = TarnoMacDialView{{}, c.size, true}.body();
    EXPECT_EQ(valuesOf(dial, "Circle", "lineWidth"), c.lineWidths);
    EXPECT_EQ(valuesOf(dial, "font", "size"), c.fonts);
    EXPECT_EQ(valuesOf(dial, "frame", "width"), c.frames);
    EXPECT_EQ(valuesOf(dial, "HStack", "spacing"), c.spacings);
  }
  const auto withoutSignals = TarnoMacDialView{{}, 132, false}.body();
  EXPECT_EQ(valuesOf(withoutSignals, "Image", "systemName"), Words{"questionmark.circle.fill"});
  EXPECT_EQ(valuesOf(withoutSignals, "HStack", "spacing"), Words{});
  EXPECT_EQ(valuesOf(withoutSignals, "VStack", "spacing"), Words{"5.0000"});
  EXPECT_EQ(valuesOf(withoutSignals, "accessibilityElement", "label"), Words{"Mac status unknown"});
}

/// What is drawn, or announced: one line a thing, without the clips around them.
std::string listed(const ui::Description& description) {
  std::string lines;
  for (const auto& child : description.children)
    lines += child.name == "clip" ? listed(child) : outline(child);
  return lines;
}

ui::Scene laidOut(const ui::View& view, ui::Size size) {
  FakeMeasurer measurer;
  return layout(view, {.size = size}, measurer);
}

TEST(WidgetView, SmallIsTheDialAloneInTheMiddle) {
  const foundation::ClockOverride clock{now};
  const auto small = tile(TarnoMacWidgetEntry::placeholder(), WidgetFamily::systemSmall);
  EXPECT_EQ(valuesOf(small, "Text", "text"), Words{"Locked"});
  EXPECT_EQ(valuesOf(small, "Image", "systemName").size(), 4U);
  EXPECT_EQ(valuesOf(small, "containerBackground", "color"), Words{"#F7FAF8"});
  EXPECT_EQ(listed(describeAccessibility(laidOut(small, {200, 150}))),
            "image label=\"Kivo's Mac locked\" x=34 y=9 width=132 height=132\n");
}

TEST(WidgetView, MediumAndLargeDrawTheDialBesideTheTextsAndPills) {
  const foundation::ClockOverride clock{now};
  const auto medium = tile(TarnoMacWidgetEntry::placeholder(), WidgetFamily::systemMedium);
  EXPECT_EQ(medium, tile(TarnoMacWidgetEntry::placeholder(), WidgetFamily::systemLarge));
  const auto scene = laidOut(medium, {332, 138});
  EXPECT_EQ("\n" + listed(describe(scene)), R"(
fill color=#F7FAF8 outline=path x=0 y=0 width=332 height=138
stroke color=#D9E2E4@0.72 lineWidth=9.176 outline=circle centerX=62 centerY=69 radius=62
stroke color=#2E8F93 lineWidth=9.176 lineCap=round outline=arc centerX=62 centerY=69 radius=62 start=154.8 end=457.2
fill color=#FFFFFF@0.58 outline=circle centerX=62 centerY=69 radius=43.4
fill color=#2E8F93 outline=path x=51.956 y=32.494 width=20.088 height=25.556
text text="Locked" font="16.12 bold rounded" color=#17212A x=37.82 y=63.72 width=48.36 height=19.344 baseline=14.508 maxLines=1
fill color=#2E8F93@0.16 outline=circle centerX=40 centerY=97.064 radius=9
fill color=#14666A outline=path x=35 y=92.064 width=10 height=10
fill color=#2E8F93@0.16 outline=circle centerX=62 centerY=97.064 radius=9
fill color=#14666A outline=path x=58 y=92.064 width=8.86 height=10
fill color=#2E8F93@0.16 outline=circle centerX=84 centerY=97.064 radius=9
fill color=#14666A outline=path x=79 y=93.247 width=9.61 height=7.595
text text="Kivo's Mac" font="12 semibold rounded" color=#61717D x=138 y=19.6 width=60 height=14.4 baseline=10.8 maxLines=1
text text="Locked" font="20 bold rounded" color=#17212A x=138 y=42 width=60 height=24 baseline=18 maxLines=1
text text="Mac locked." font="12 medium rounded" color=#61717D x=138 y=74 width=66 height=14.4 baseline=10.8 maxLines=2
fill color=#7078B2@0.12 outline=path x=138 y=96.4 width=62 height=22
fill color=#7078B2 outline=path x=146.2 y=101.6 width=11.6 height=11.6
text text="0s ago" font="10 semibold rounded" color=#7078B2 x=162 y=101.4 width=30 height=12 baseline=9 maxLines=1
fill color=#14666A@0.12 outline=path x=206 y=96.4 width=78.25 height=22
fill color=#14666A outline=path x=214.2 y=101.475 width=12.925 height=11.825
text text="Face seen" font="10 semibold rounded" color=#14666A x=231.25 y=101.4 width=45 height=12 baseline=9 maxLines=1
)");
  EXPECT_EQ("\n" + listed(describeAccessibility(scene)), R"(
image label="Kivo's Mac locked" x=0 y=7 width=124 height=124
staticText label="Kivo's Mac" x=138 y=19.6 width=60 height=14.4
staticText label="Locked" x=138 y=42 width=60 height=24
staticText label="Mac locked." x=138 y=74 width=66 height=14.4
staticText label="0s ago" x=162 y=101.4 width=30 height=12
staticText label="Face seen" x=231.25 y=101.4 width=45 height=12
)");
}

TEST(WidgetView, TextsShrinkBeforeTheyAreCut) {
  const foundation::ClockOverride clock{now};
  const TarnoMacWidgetEntry entry{
      now, Snapshot{.deviceName = "Kivo's Mac", .reason = "Mac locked.", .stale = true}, {}};
  Words fonts;
  for (const auto& item : laidOut(tile(entry), {160, 200}).items) {
    const auto* const run = std::get_if<ui::TextRun>(&item);
    if (run == nullptr) continue;
    EXPECT_TRUE(run->truncated) << run->text;
    fonts.push_back(std::to_string(run->font.size).substr(0, 6));
  }
  EXPECT_EQ(fonts, (Words{"13.702", "12.000", "17.000", "10.200", "8.5000", "8.5000"}));
}

TEST(WidgetView, TextsFollowTheEntryAndTheClock) {
  const foundation::ClockOverride clock{now};
  const auto textsOf = [](const TarnoMacWidgetEntry& entry) { return valuesOf(tile(entry), "Text", "text"); };
  EXPECT_EQ(textsOf({.date = now - 1h}), (Words{"No status", "Mac", "No status", "Waiting for Tarno status.",
                                                "Not synced", "Presence quiet"}));
  EXPECT_EQ(textsOf({now, Snapshot{.deviceName = "", .companionPresent = true}, now}),
            (Words{"Unknown", "", "Unknown", "Waiting for Tarno status.", "0s ago", "Watch near"}));
  EXPECT_EQ(textsOf({now, Snapshot{.facePresent = true, .companionPresent = true}, {}})[5], "Face seen");
  EXPECT_EQ(textsOf({now, Snapshot{.facePresent = false, .companionPresent = true}, {}})[5], "Watch near");

  const std::pair<foundation::Date::duration, const char*> ages[] = {
      {-1h, "0s ago"},      {0s, "0s ago"},    {999ms, "0s ago"},   {1s, "1s ago"},
      {59990ms, "59s ago"}, {60s, "1m ago"},   {119s, "1m ago"},    {3599s, "59m ago"},
      {3600s, "1h ago"},    {7199s, "1h ago"}, {90000s, "25h ago"}, {48h, "48h ago"}};
  for (const auto& [age, line] : ages) EXPECT_EQ(textsOf({now - 30min, {}, now - age})[4], line);
}

}  // namespace
