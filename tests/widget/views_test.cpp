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

constexpr foundation::Date now = sys_days{2026y / November / 16} + 15h;

/// The values of `attribute` of all nodes called `name`, in the order in which they are drawn, a bar after
/// each.
std::string valuesOf(const ui::Description& description, std::string_view name, std::string_view attribute) {
  std::string found;
  for (const auto& [key, value] : description.attributes) {
    if (description.name != name || key != attribute) continue;
    const double* const number = std::get_if<double>(&value);
    found += (number != nullptr ? ui::digits(*number) : std::get<std::string>(value)) + '|';
  }
  for (const auto& child : description.children) found += valuesOf(child, name, attribute);
  return found;
}

std::string valuesOf(const ui::View& view, std::string_view name, std::string_view attribute) {
  return valuesOf(describe(view), name, attribute);
}

ui::View tile(const TarnoMacWidgetEntry& entry, WidgetFamily family = WidgetFamily::systemMedium) {
  return TarnoMacWidgetView{entry}.body({.widgetFamily = family});
}

TEST(DialView, ShowsEveryStatus) {
  using enum TarnoMacStatus::Case;
  const std::string on = "#14666A|", off = "#61717D@0.58|", muted = "#61717D|";
  const std::string question = "questionmark.circle.fill|", stale = "clock.badge.exclamationmark|";
  const struct {
    std::optional<Snapshot> status;
    std::string arcEnd, accent, icon, text, dots, label;
  } cases[] = {
      {{}, "0.315|", muted, question, "No status|", off + off + off, "Mac status unknown|"},
      {Snapshot{.inputIdleSeconds = 0}, "0.315|", muted, question, "Unknown|", off + off + on,
       "Mac unknown|"},
      {Snapshot{.deviceName = "Kivo's Mac", .status = locked, .facePresent = true, .inputIdleSeconds = 12},
       "0.92|", "#2E8F93|", "lock.fill|", "Locked|", on + off + off, "Kivo's Mac locked|"},
      {Snapshot{.deviceName = "", .status = unlocked, .companionPresent = true, .inputIdleSeconds = 11.9},
       "0.534|", "#EE6D57|", "lock.open.fill|", "Unlocked|", off + on + on, " unlocked|"},
      {Snapshot{.status = locking, .companionPresent = false, .stale = false}, "0.702|", "#D89B36|",
       "lock.rotation|", "Locking|", off + off + off, "Mac locking|"},
      {Snapshot{.deviceName = "M", .status = locked, .stale = true}, "0.366|", muted, stale, "Status stale|",
       off + off + off, "M status stale|"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.label);
    const auto dial = TarnoMacDialView{c.status, 124, true}.body();
    EXPECT_EQ(valuesOf(dial, "Circle", "to"), c.arcEnd);
    EXPECT_EQ(valuesOf(dial, "Circle", "stroke"), "#D9E2E4@0.72|" + c.accent);
    EXPECT_EQ(valuesOf(dial, "Image", "systemName"),
              c.icon + "face.smiling|applewatch|cursorarrow.motionlines|");
    EXPECT_EQ(valuesOf(dial, "Text", "text"), c.text);
    EXPECT_EQ(valuesOf(dial, "foregroundStyle", "color"), c.accent + "#17212A|" + c.dots);
    EXPECT_EQ(valuesOf(dial, "accessibilityElement", "label"), c.label);
  }
  const auto face = TarnoMacDialView{Snapshot{.facePresent = true}, 124, true}.body();
  EXPECT_EQ(valuesOf(face, "Circle", "fill"), "#FFFFFF@0.58|#2E8F93@0.16|#D9E2E4@0.4|#D9E2E4@0.4|");
  EXPECT_NE(outline(describe(face)).find("accessibilityHidden\n"), std::string::npos);
}

TEST(DialView, MeasuresFollowItsSizeDownToTheirMinimums) {
  const struct {
    double size;
    const char *lineWidths, *fonts, *widths, *heights, *spacings;
  } cases[] = {
      {50, "6|6|", "9|6.5|8|8|8|", "50|35|31|18|18|18|", "50|35|18|18|18|", "4|"},
      {400, "29.6|29.6|", "72|52|20.8|20.8|20.8|", "400|280|248|44.8|44.8|44.8|", "400|280|44.8|44.8|44.8|",
       "12.8|"},
  };
  for (const auto& c : cases) {
    const auto dial = TarnoMacDialView{{}, c.size, true}.body();
    EXPECT_EQ(valuesOf(dial, "Circle", "lineWidth"), c.lineWidths);
    EXPECT_EQ(valuesOf(dial, "font", "size"), c.fonts);
    EXPECT_EQ(valuesOf(dial, "font", "weight"), "bold|bold|bold|bold|bold|");
    EXPECT_EQ(valuesOf(dial, "frame", "width"), c.widths);
    EXPECT_EQ(valuesOf(dial, "frame", "height"), c.heights);
    EXPECT_EQ(valuesOf(dial, "HStack", "spacing"), c.spacings);
  }
  const auto withoutSignals = TarnoMacDialView{{}, 132, false}.body();
  EXPECT_EQ(valuesOf(withoutSignals, "Image", "systemName"), "questionmark.circle.fill|");
  EXPECT_EQ(valuesOf(withoutSignals, "VStack", "spacing"), "5|");
}

ui::Scene laidOut(const ui::View& view, ui::Size size) {
  FakeMeasurer measurer;
  return layout(view, {.size = size}, measurer);
}

TEST(WidgetView, SmallIsTheDialAloneInTheMiddle) {
  const foundation::ClockOverride clock{now};
  const auto small = tile(TarnoMacWidgetEntry::placeholder(), WidgetFamily::systemSmall);
  EXPECT_EQ(valuesOf(small, "containerBackground", "color"), "#F7FAF8|");
  EXPECT_EQ(outline(describeAccessibility(laidOut(small, {200, 150}))),
            "accessibility\n  image label=\"Kivo's Mac locked\" x=34 y=9 width=132 height=132\n");
}

TEST(WidgetView, MediumAndLargeDrawTheDialBesideTheTextsAndPills) {
  const foundation::ClockOverride clock{now};
  const auto medium = tile(TarnoMacWidgetEntry::placeholder(), WidgetFamily::systemMedium);
  EXPECT_EQ(medium, tile(TarnoMacWidgetEntry::placeholder(), WidgetFamily::systemLarge));
  EXPECT_EQ(valuesOf(medium, "Capsule", "style"), "continuous|continuous|");
  const auto scene = laidOut(medium, {332, 138});
  EXPECT_EQ(outline(describe(scene)), R"(Scene width=332 height=138
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
}

TEST(WidgetView, TextsShrinkBeforeTheyAreCut) {
  const foundation::ClockOverride clock{now};
  const TarnoMacWidgetEntry entry{
      now, Snapshot{.deviceName = "Kivo's Mac", .reason = "Mac locked.", .stale = true}, {}};
  std::string fonts;
  for (const auto& item : laidOut(tile(entry), {160, 200}).items) {
    const auto* const run = std::get_if<ui::TextRun>(&item);
    if (run == nullptr) continue;
    EXPECT_TRUE(run->truncated) << run->text;
    fonts += ui::digits(run->font.size) + ' ';
  }
  EXPECT_EQ(fonts, "13.702 12 17 10.2 8.5 8.5 ");
}

TEST(WidgetView, TextsFollowTheEntryAndTheClock) {
  const foundation::ClockOverride clock{now};
  const std::pair<TarnoMacWidgetEntry, const char*> cases[] = {
      {{.date = now - 1h}, "No status|Mac|No status|Waiting for Tarno status.|Not synced|Presence quiet|"},
      {{now, Snapshot{.deviceName = "", .companionPresent = true}, now},
       "Unknown||Unknown|Waiting for Tarno status.|0s ago|Watch near|"},
      {{now, Snapshot{.reason = "a", .facePresent = true, .companionPresent = true}, {}},
       "Unknown|Mac|Unknown|a|Not synced|Face seen|"},
      {{now, Snapshot{.reason = "a", .facePresent = false}, {}},
       "Unknown|Mac|Unknown|a|Not synced|Presence quiet|"}};
  for (const auto& [entry, texts] : cases) EXPECT_EQ(valuesOf(tile(entry), "Text", "text"), texts);

  const std::pair<foundation::Date::duration, std::string> ages[] = {
      {-1h, "0s ago"}, {999ms, "0s ago"}, {59990ms, "59s ago"}, {119s, "1m ago"}, {48h, "48h ago"}};
  for (const auto& [age, line] : ages)
    EXPECT_NE(valuesOf(tile({now - 30min, {}, now - age}), "Text", "text").find('|' + line + '|'),
              std::string::npos)
        << line;
}

}  // namespace
