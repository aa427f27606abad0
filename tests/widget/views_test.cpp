#include <gtest/gtest.h>

#include "ui/description.hpp"
#include "widget/style/widget_style.hpp"
#include "widget/views/dial_view.hpp"
#include "widget/views/widget_view.hpp"

namespace {

using namespace std::chrono;
using widgetkit::WidgetFamily;
using Snapshot = TarnoMacStatusSnapshot;

constexpr foundation::Date now = sys_days{2026y / November / 16} + 15h;

std::string outlineOf(const ui::View& view) { return outline(describe(view)); }

/// The values of one attribute of all nodes of one name, in the order in which they are drawn.
void collect(const ui::Description& description, std::string_view name, std::string_view attribute,
             std::vector<std::string>& found) {
  if (description.name == name)
    for (const auto& [key, value] : description.attributes)
      if (key == attribute) found.push_back(std::get<std::string>(value));
  for (const auto& child : description.children) collect(child, name, attribute, found);
}

std::vector<std::string> textsOf(const ui::View& view) {
  std::vector<std::string> found;
  collect(describe(view), "Text", "text", found);
  return found;
}

ui::View tile(const TarnoMacWidgetEntry& entry, WidgetFamily family = WidgetFamily::systemMedium) {
  return TarnoMacWidgetView{family, entry}.body();
}

/// The dial as it must be, written out once more from its description.
ui::View expectedDial(double size, double progress, ui::Color accent, const char* icon, const char* text,
                      std::array<bool, 3> active, bool showsSignals, const char* label) {
  using namespace ui;
  using namespace TarnoMacWidgetStyle;
  const double width = std::max(0.074 * size, 6.0);
  const double dot = std::max(0.112 * size, 18.0);
  const char* const symbols[] = {"face.smiling", "applewatch", "cursorarrow.motionlines"};
  std::vector<View> dots;
  for (std::size_t i = 0; i < 3; ++i)
    dots.push_back(Image(symbols[i])
                       .font(Font::system(std::max(0.052 * size, 8.0)).weight(FontWeight::bold))
                       .foregroundStyle(active[i] ? tealDark : muted.opacity(0.58))
                       .frame({.width = dot, .height = dot})
                       .background(Circle{}.fill(active[i] ? teal.opacity(0.16) : line.opacity(0.4))));
  std::vector<View> stack{
      Image(icon).font(Font::system(0.18 * size).weight(FontWeight::bold)).foregroundStyle(accent),
      Text(text)
          .font(Font::system(0.13 * size).weight(FontWeight::bold).rounded())
          .foregroundStyle(ink)
          .lineLimit(1)
          .minimumScaleFactor(0.85)};
  if (showsSignals)
    stack.push_back(makeHStack({.spacing = std::max(0.032 * size, 4.0)}, dots).accessibilityHidden());
  return ZStack({}, Circle{}.stroke(line.opacity(0.72), {.lineWidth = width}),
                Circle{}
                    .trim(0.08, 0.08 + 0.84 * progress)
                    .stroke(accent, {.lineWidth = width, .lineCap = LineCap::round})
                    .rotationEffect(Angle::degrees(126)),
                Circle{}.fill(white.opacity(0.58)).frame({.width = 0.7 * size, .height = 0.7 * size}),
                makeVStack({.spacing = 5}, stack).frame({.width = 0.62 * size}))
      .frame({.width = size, .height = size})
      .accessibilityElement(label);
}

TEST(DialView, ShowsEveryStatus) {
  using namespace TarnoMacWidgetStyle;
  const auto question = "questionmark.circle.fill";
  const struct {
    std::optional<Snapshot> status;
    double size, progress;
    ui::Color accent;
    const char* icon;
    const char* text;
    std::array<bool, 3> active;
    bool showsSignals;
    const char* label;
  } cases[] = {
      {{}, 132, 0.28, muted, question, "No status", {}, true, "Mac status unknown"},
      {Snapshot{}, 124, 0.28, muted, question, "Unknown", {}, true, "Mac unknown"},
      {Snapshot{.deviceName = "Kivo's Mac",
                .status = TarnoMacStatus::locked,
                .facePresent = true,
                .companionPresent = false,
                .inputIdleSeconds = 12},
       124,
       1,
       teal,
       "lock.fill",
       "Locked",
       {true, false, false},
       true,
       "Kivo's Mac locked"},
      {Snapshot{.deviceName = "",
                .status = TarnoMacStatus::unlocked,
                .companionPresent = true,
                .inputIdleSeconds = 11.9},
       132,
       0.54,
       coral,
       "lock.open.fill",
       "Unlocked",
       {false, true, true},
       true,
       " unlocked"},
      {Snapshot{.status = TarnoMacStatus::locking, .stale = false},
       50,
       0.74,
       gold,
       "lock.rotation",
       "Locking",
       {},
       false,
       "Mac locking"},
      {Snapshot{.status = TarnoMacStatus::unknown},
       400,
       0.28,
       muted,
       question,
       "Unknown",
       {},
       true,
       "Mac unknown"},
      {Snapshot{.deviceName = "M", .status = TarnoMacStatus::locked, .facePresent = true, .stale = true},
       124,
       0.34,
       muted,
       "clock.badge.exclamationmark",
       "Status stale",
       {true, false, false},
       true,
       "M status stale"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(outlineOf(TarnoMacDialView{c.status, c.size, c.showsSignals}.body()),
              outlineOf(expectedDial(c.size, c.progress, c.accent, c.icon, c.text, c.active, c.showsSignals,
                                     c.label)))
        << c.label;
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

TEST(WidgetView, ExpandedLayoutIsThis) {
  const foundation::ClockOverride clock{now};
  using namespace ui;
  using namespace TarnoMacWidgetStyle;
  const auto font = [](TextStyle style, FontWeight weight) {
    return Font::system(style).rounded().weight(weight);
  };
  const auto pill = [&](const char* title, const char* icon, Color tint) {
    return Label(title, icon)
        .font(font(TextStyle::caption2, FontWeight::semibold))
        .foregroundStyle(tint)
        .lineLimit(1)
        .minimumScaleFactor(0.85)
        .padding(EdgeSet::horizontal, 8)
        .padding(EdgeSet::vertical, 5)
        .background(Capsule{RoundedCornerStyle::continuous}.fill(tint.opacity(0.12)));
  };
  const auto text = [&](const char* words, TextStyle style, FontWeight weight, Color color, int lines) {
    return Text(words).font(font(style, weight)).foregroundStyle(color).lineLimit(lines);
  };
  const auto entry = TarnoMacWidgetEntry::placeholder();
  const auto expected =
      HStack(
          {.spacing = 14}, TarnoMacDialView{entry.status, 124, true}.body(),
          VStack(
              {.alignment = leading, .spacing = 8},
              text("Kivo's Mac", TextStyle::caption, FontWeight::semibold, muted, 1),
              text("Locked", TextStyle::title3, FontWeight::bold, ink, 1).minimumScaleFactor(0.85),
              text("Mac locked.", TextStyle::caption, FontWeight::medium, muted, 2).minimumScaleFactor(0.85),
              HStack({.spacing = 6}, pill("0s ago", "clock", periwinkle),
                     pill("Face seen", "person.crop.circle.badge.checkmark", tealDark))))
          .frame({.maxWidth = infinity, .maxHeight = infinity, .alignment = leading})
          .containerBackground(paper);
  EXPECT_EQ(outlineOf(tile(entry)), outlineOf(expected));
  EXPECT_EQ(tile(entry), expected);
}

TEST(WidgetView, TextsFollowTheEntryAndTheClock) {
  const foundation::ClockOverride clock{now};
  using Texts = std::vector<std::string>;
  EXPECT_EQ(
      textsOf(tile({.date = now - 1h})),
      (Texts{"No status", "Mac", "No status", "Waiting for Tarno status.", "Not synced", "Presence quiet"}));
  EXPECT_EQ(textsOf(tile({now, Snapshot{.deviceName = "", .companionPresent = true}, now})),
            (Texts{"Unknown", "", "Unknown", "Waiting for Tarno status.", "0s ago", "Watch near"}));
  EXPECT_EQ(textsOf(tile({now, Snapshot{.facePresent = true, .companionPresent = true}, {}}))[5],
            "Face seen");
  EXPECT_EQ(textsOf(tile({now, Snapshot{.facePresent = false, .companionPresent = true}, {}}))[5],
            "Watch near");

  const std::pair<foundation::Date::duration, const char*> ages[] = {
      {-1h, "0s ago"}, {0s, "0s ago"},     {999ms, "0s ago"}, {1s, "1s ago"},      {59990ms, "59s ago"},
      {60s, "1m ago"}, {3599s, "59m ago"}, {3600s, "1h ago"}, {90000s, "25h ago"}, {48h, "48h ago"}};
  for (const auto& [age, line] : ages) EXPECT_EQ(textsOf(tile({now, {}, now - age}))[4], line);
}

}  // namespace
