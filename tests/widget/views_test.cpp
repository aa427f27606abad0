#include <gtest/gtest.h>

#include "support/fake_measurer.hpp"
#include "tarno/ui/description/scene_description.hpp"
#include "tarno/ui/description/view_description.hpp"
#include "tarno/ui/layout.hpp"
#include "tarno/widget/views/dial_view.hpp"
#include "tarno/widget/views/widget_view.hpp"

namespace {

using namespace std::chrono;
using Snapshot = TarnoMacStatusSnapshot;

constexpr tarno::Date now = sys_days{2026y / November / 16} + 15h;

/// Returns the values of `attribute` of all nodes called `name` in drawing order, each followed by a bar.
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

ui::Description drawn(const TarnoMacWidgetEntry& entry, ui::Size size) {
  FakeMeasurer measurer;
  const auto view = TarnoMacWidgetView{entry}.body({.widgetFamily = widgetkit::WidgetFamily::systemMedium});
  const auto scene = layout(view, {.size = size}, measurer);
  return ui::Description{"tile", {}, {describe(scene), describeAccessibility(scene)}};
}

TEST(DialView, ColoursFollowTheStatusAndItsSignals) {
  using enum TarnoMacStatus::Case;
  const std::string on = "#14666A|", off = "#61717D@0.58|", muted = "#61717D|";
  const std::tuple<std::optional<Snapshot>, std::string, std::string> rows[] = {
      {{}, muted, off + off + off},
      {Snapshot{.inputIdleSeconds = 0}, muted, off + off + on},
      {Snapshot{.status = locked, .facePresent = true, .inputIdleSeconds = 12}, "#2E8F93|", on + off + off},
      {Snapshot{.status = unlocked, .companionPresent = true, .inputIdleSeconds = 11.9}, "#EE6D57|",
       off + on + on},
      {Snapshot{.status = locking, .companionPresent = false, .stale = false}, "#D89B36|", off + off + off},
      {Snapshot{.status = locked, .stale = true}, muted, off + off + off}};
  for (const auto& [status, accent, dots] : rows) {
    const auto dial = describe(TarnoMacDialView{status, 124, true}.body());
    EXPECT_EQ(valuesOf(dial, "Circle", "stroke"), "#D9E2E4@0.72|" + accent);
    EXPECT_EQ(valuesOf(dial, "foregroundStyle", "color"),
              std::string{accent}.append("#17212A|").append(dots));
  }
}

TEST(WidgetView, TextsShrinkBeforeTheyAreCut) {
  const tarno::ClockOverride clock{now};
  const TarnoMacWidgetEntry entry{
      now, Snapshot{.deviceName = "Kivo's Mac", .reason = "Mac locked.", .stale = true}, {}};
  const auto narrow = drawn(entry, {160, 200});
  EXPECT_EQ(valuesOf(narrow, "text", "font"),
            "13.702 bold rounded|12 semibold rounded|17 bold rounded|10.2 medium rounded|"
            "8.5 semibold rounded|8.5 semibold rounded|");
  EXPECT_EQ(valuesOf(narrow, "text", "maxLines"), "1|1|1|2|1|1|");
}

TEST(WidgetView, SaysWhatTheEntryAndTheClockTell) {
  const tarno::ClockOverride clock{now};
  const std::pair<TarnoMacWidgetEntry, const char*> rows[] = {
      {{.date = now - 1h},
       "Mac status unknown|Mac|No status|Waiting for Tarno status.|Not synced|Presence quiet|"},
      {{now, Snapshot{.deviceName = "", .companionPresent = true}, now + 1h},
       " unknown|Unknown|Waiting for Tarno status.|0s ago|Watch near|"},
      {{now - 30min, Snapshot{.reason = "a", .facePresent = true, .companionPresent = true}, now - 48h},
       "Mac unknown|Mac|Unknown|a|48h ago|Face seen|"},
      {{now, Snapshot{.deviceName = "M", .reason = "a", .facePresent = false, .stale = true}, {}},
       "M status stale|M|Status stale|Mac status is stale. Refresh Tarno before trusting it.|Not synced|"
       "Presence quiet|"}};
  for (const auto& [entry, words] : rows) {
    const auto tile = drawn(entry, {332, 138});
    EXPECT_EQ(valuesOf(tile, "image", "label") + valuesOf(tile, "staticText", "label"), words);
  }
}

}  // namespace
