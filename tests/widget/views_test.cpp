#include <gtest/gtest.h>

#include "ui/description/view_description.hpp"
#include "widget/style/widget_style.hpp"
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
  return TarnoMacWidgetView{family, entry}.body();
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
    EXPECT_EQ(valuesOf(dial, "accessibilityElement", "label"), Words{c.label});
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
  EXPECT_EQ(valuesOf(TarnoMacDialView{{}, 132, false}.body(), "Image", "systemName").size(), 1u);
}

TEST(WidgetView, SmallIsTheDialAloneAndTheOthersAreAlike) {
  const foundation::ClockOverride clock{now};
  const auto entry = TarnoMacWidgetEntry::placeholder();
  EXPECT_EQ(tile(entry, WidgetFamily::systemSmall),
            TarnoMacDialView({entry.status, 132, true})
                .body()
                .frame({.maxWidth = ui::infinity, .maxHeight = ui::infinity})
                .containerBackground(TarnoMacWidgetStyle::paper));
  EXPECT_EQ(tile(entry, WidgetFamily::systemMedium), tile(entry, WidgetFamily::systemLarge));
}

TEST(WidgetView, ExpandedLayoutReadsAsItWasDesigned) {
  const foundation::ClockOverride clock{now};
  EXPECT_EQ(outline(describe(tile(TarnoMacWidgetEntry::placeholder()))), R"(containerBackground color=#F7FAF8
  frame maxWidth=infinity maxHeight=infinity alignment=leading
    HStack spacing=14
      accessibilityElement label="Kivo's Mac locked"
        frame width=124 height=124
          ZStack
            Circle stroke=#D9E2E4@0.72 lineWidth=9.176
            rotationEffect degrees=126
              Circle from=0.08 to=0.92 stroke=#2E8F93 lineWidth=9.176 lineCap=round
            frame width=86.8 height=86.8
              Circle fill=#FFFFFF@0.58
            frame width=76.88
              VStack spacing=5
                foregroundStyle color=#2E8F93
                  font size=22.32 weight=bold
                    Image systemName="lock.fill"
                minimumScaleFactor factor=0.85
                  lineLimit lines=1
                    foregroundStyle color=#17212A
                      font size=16.12 weight=bold design=rounded
                        Text text="Locked"
                accessibilityHidden
                  HStack spacing=4
                    background
                      frame width=18 height=18
                        foregroundStyle color=#14666A
                          font size=8 weight=bold
                            Image systemName="face.smiling"
                      Circle fill=#2E8F93@0.16
                    background
                      frame width=18 height=18
                        foregroundStyle color=#14666A
                          font size=8 weight=bold
                            Image systemName="applewatch"
                      Circle fill=#2E8F93@0.16
                    background
                      frame width=18 height=18
                        foregroundStyle color=#14666A
                          font size=8 weight=bold
                            Image systemName="cursorarrow.motionlines"
                      Circle fill=#2E8F93@0.16
      VStack alignment=leading spacing=8
        lineLimit lines=1
          foregroundStyle color=#61717D
            font size=12 weight=semibold design=rounded
              Text text="Kivo's Mac"
        minimumScaleFactor factor=0.85
          lineLimit lines=1
            foregroundStyle color=#17212A
              font size=20 weight=bold design=rounded
                Text text="Locked"
        minimumScaleFactor factor=0.85
          lineLimit lines=2
            foregroundStyle color=#61717D
              font size=12 weight=medium design=rounded
                Text text="Mac locked."
        HStack spacing=6
          background
            padding edges=vertical length=5
              padding edges=horizontal length=8
                minimumScaleFactor factor=0.85
                  lineLimit lines=1
                    foregroundStyle color=#7078B2
                      font size=10 weight=semibold design=rounded
                        HStack spacing=4
                          Image systemName="clock"
                          Text text="0s ago"
            Capsule style=continuous fill=#7078B2@0.12
          background
            padding edges=vertical length=5
              padding edges=horizontal length=8
                minimumScaleFactor factor=0.85
                  lineLimit lines=1
                    foregroundStyle color=#14666A
                      font size=10 weight=semibold design=rounded
                        HStack spacing=4
                          Image systemName="person.crop.circle.badge.checkmark"
                          Text text="Face seen"
            Capsule style=continuous fill=#14666A@0.12
)");
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
      {-1h, "0s ago"}, {0s, "0s ago"},     {999ms, "0s ago"}, {1s, "1s ago"},      {59990ms, "59s ago"},
      {60s, "1m ago"}, {3599s, "59m ago"}, {3600s, "1h ago"}, {90000s, "25h ago"}, {48h, "48h ago"}};
  for (const auto& [age, line] : ages) EXPECT_EQ(textsOf({now, {}, now - age})[4], line);
}

}  // namespace
