#include "tarno-widget/tile.hpp"

#include <gtest/gtest.h>

#include "render/image.hpp"
#include "shared/coding/json.hpp"
#include "support/pixel_reference.hpp"
#include "tarno-widget/extension.hpp"
#include "ui/symbols/symbol.hpp"
#include "widget/views/widget_view.hpp"

namespace {

using namespace std::chrono;
using widgetkit::WidgetFamily;

constexpr foundation::Date now = sys_days{2026y / November / 16} + 15h;

/// The entry that shows a record, received some time ago; that shows none where `json` is empty.
widgetkit::AnyTimelineEntry entryOf(const std::string& json, foundation::Date::duration age) {
  TarnoMacWidgetEntry entry{.date = now};
  if (!json.empty()) {
    entry.status = TarnoJSON::decoder().decode<TarnoMacStatusSnapshot>(json);
    entry.lastRefresh = now - age;
  }
  return widgetkit::AnyTimelineEntry::of(entry, TarnoMacWidgetView{entry});
}

TEST(Tile, LooksAsItDid) {
  const foundation::ClockOverride clock{now};
  render::TextEngine text;
  const std::tuple<const char*, WidgetFamily, double, foundation::Date::duration, const char*> rows[] = {
      {"locked-medium", WidgetFamily::systemMedium, 2, 4s,
       R"({"device_name": "Kivo's Mac", "status": "locked", "reason": "Mac locked.", "face_present": true,
           "companion_present": true, "input_idle_seconds": 3})"},
      {"stale-small", WidgetFamily::systemSmall, 1, 3h,
       R"({"status": "locked", "face_present": true, "stale": true})"},
      {"locking-large", WidgetFamily::systemLarge, 1, 61s,
       R"({"device_name": "書斎のマック 🖥️ حاسوب المكتب", "status": "locking", "reason": "Nobody in front of the Mac; )"
       R"(locking it in a few seconds unless a face, the watch or some input is noticed before then."})"},
      {"none-medium", WidgetFamily::systemMedium, 1, 0s, ""},
      {"unlocked-small", WidgetFamily::systemSmall, 3, 0s, R"({"status": "unlocked"})"}};
  for (const auto& [name, family, scale, age, json] : rows) {
    const auto scene = extension::tileScene(entryOf(json, age), family, text);
    EXPECT_TRUE(matchesReference(encodeImage(scene, text, render::ImageFormat::png, scale), name));
  }
}

TEST(Tile, SymbolsLookAsTheyDid) {
  ui::Scene sheet{.size = {350, 140}, .items = {}, .accessibility = {}};
  for (const ui::Symbol& symbol : ui::allSymbols()) {
    const auto [row, column] = std::div(static_cast<int>(sheet.items.size()), 5);
    const ui::Point corner{column * 70.0 + 3, row * 70.0 + 3};
    sheet.items.emplace_back(ui::FillPath{symbol.outline.placed(48, corner), ui::black});
  }
  render::TextEngine text;
  EXPECT_TRUE(matchesReference(encodeImage(sheet, text, render::ImageFormat::png, 1), "symbols"));
}

}  // namespace
