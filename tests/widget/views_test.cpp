#include <gtest/gtest.h>

#include "support/fake_measurer.hpp"
#include "tarno/ui/description/scene_description.hpp"
#include "tarno/ui/description/view_description.hpp"
#include "tarno/ui/layout.hpp"
#include "tarno/widget/views/dial_view.hpp"
#include "tarno/widget/views/widget_view.hpp"

namespace {

using namespace std::chrono;
using widgetkit::WidgetFamily;
using Snapshot = TarnoMacStatusSnapshot;

constexpr tarno::Date now = sys_days{2026y / November / 16} + 15h;

/// The values of `attribute` of all nodes called `name` as they are drawn in turn, a bar after each.
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
  const std::tuple<const char*, const char*, const char*, const char*> cases[] = {
      {"Circle", "lineWidth", "6|6|", "29.6|29.6|"},
      {"font", "size", "9|6.5|8|8|8|", "72|52|20.8|20.8|20.8|"},
      {"font", "weight", "bold|bold|bold|bold|bold|", "bold|bold|bold|bold|bold|"},
      {"frame", "width", "50|35|31|18|18|18|", "400|280|248|44.8|44.8|44.8|"},
      {"frame", "height", "50|35|18|18|18|", "400|280|44.8|44.8|44.8|"},
      {"HStack", "spacing", "4|", "12.8|"}};
  for (const auto& [node, attribute, at50, at400] : cases) {
    EXPECT_EQ(valuesOf(TarnoMacDialView{{}, 50, true}.body(), node, attribute), at50);
    EXPECT_EQ(valuesOf(TarnoMacDialView{{}, 400, true}.body(), node, attribute), at400);
  }
  const auto withoutSignals = TarnoMacDialView{{}, 132, false}.body();
  EXPECT_EQ(valuesOf(withoutSignals, "Image", "systemName"), "questionmark.circle.fill|");
  EXPECT_EQ(valuesOf(withoutSignals, "VStack", "spacing"), "5|");
}

ui::Scene laidOut(const ui::View& view, ui::Size size) {
  FakeMeasurer measurer;
  return layout(view, {.size = size}, measurer);
}

TEST(WidgetView, IsADialBesideTheTextsAndPillsAndSmallTheDialAlone) {
  const tarno::ClockOverride clock{now};
  const auto small = tile(TarnoMacWidgetEntry::placeholder(), WidgetFamily::systemSmall);
  EXPECT_EQ(valuesOf(small, "containerBackground", "color"), "#F7FAF8|");
  EXPECT_EQ(outline(describeAccessibility(laidOut(small, {200, 150}))),
            "accessibility\n  image label=\"Kivo's Mac locked\" x=34 y=9 width=132 height=132\n");
  const auto medium = tile(TarnoMacWidgetEntry::placeholder());
  EXPECT_EQ(medium, tile(TarnoMacWidgetEntry::placeholder(), WidgetFamily::systemLarge));
  EXPECT_EQ(valuesOf(medium, "Capsule", "style"), "continuous|continuous|");
  EXPECT_EQ(valuesOf(medium, "Capsule", "fill"), "#7078B2@0.12|#14666A@0.12|");
  EXPECT_EQ(outline(describeAccessibility(laidOut(medium, {332, 138}))), R"(accessibility
  image label="Kivo's Mac locked" x=0 y=7 width=124 height=124
  staticText label="Kivo's Mac" x=138 y=19.6 width=60 height=14.4
  staticText label="Locked" x=138 y=42 width=60 height=24
  staticText label="Mac locked." x=138 y=74 width=66 height=14.4
  staticText label="0s ago" x=162 y=101.4 width=30 height=12
  staticText label="Face seen" x=231.25 y=101.4 width=45 height=12
)");
}

TEST(WidgetView, TextsShrinkBeforeTheyAreCut) {
  const tarno::ClockOverride clock{now};
  const TarnoMacWidgetEntry entry{
      now, Snapshot{.deviceName = "Kivo's Mac", .reason = "Mac locked.", .stale = true}, {}};
  std::string fonts;
  for (const auto& item : laidOut(tile(entry), {160, 200}).items) {
    const auto* const run = std::get_if<ui::TextRun>(&item);
    if (run == nullptr) continue;
    EXPECT_TRUE(run->truncated) << run->text;
    fonts += ui::digits(run->font.size) + "/" + std::to_string(run->maxLines) + " ";
  }
  EXPECT_EQ(fonts, "13.702/1 12/1 17/1 10.2/2 8.5/1 8.5/1 ");
}

TEST(WidgetView, TextsFollowTheEntryAndTheClock) {
  const tarno::ClockOverride clock{now};
  const std::pair<TarnoMacWidgetEntry, const char*> cases[] = {
      {{.date = now - 1h}, "No status|Mac|No status|Waiting for Tarno status.|Not synced|Presence quiet|"},
      {{now, Snapshot{.deviceName = "", .companionPresent = true}, now + 1h},
       "Unknown||Unknown|Waiting for Tarno status.|0s ago|Watch near|"},
      {{now - 30min, Snapshot{.reason = "a", .facePresent = true, .companionPresent = true}, now - 48h},
       "Unknown|Mac|Unknown|a|48h ago|Face seen|"},
      {{now, Snapshot{.reason = "a", .facePresent = false}, {}},
       "Unknown|Mac|Unknown|a|Not synced|Presence quiet|"}};
  for (const auto& [entry, texts] : cases) EXPECT_EQ(valuesOf(tile(entry), "Text", "text"), texts);
}

}  // namespace
