#include "tarno-widget/tile.hpp"

#include <gtest/gtest.h>

#include "render/image.hpp"
#include "shared/coding/json.hpp"
#include "support/fake_measurer.hpp"
#include "support/pixel_reference.hpp"
#include "tarno-widget/extension.hpp"
#include "ui/symbols/symbol.hpp"
#include "widget/views/widget_view.hpp"

namespace {

using namespace std::chrono;
using namespace std::string_literals;
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

TEST(Tile, TextsKeepToTheirMarginsAndApart) {
  const foundation::ClockOverride clock{now};
  FakeMeasurer measurer;
  for (const auto& text :
       {""s, std::string(60, 'w'), std::string(5000, 'x') + " y", "a\nb\nc"s, std::string(200, ' ')})
    for (const auto family :
         {WidgetFamily::systemSmall, WidgetFamily::systemMedium, WidgetFamily::systemLarge}) {
      SCOPED_TRACE(text.substr(0, 9));
      const TarnoMacStatusSnapshot status{.deviceName = text, .reason = text};
      const auto entry = entryOf(TarnoJSON::encoder().encode(status), 100000h);
      const auto scene = extension::tileScene(entry, family, measurer);
      std::vector<ui::Rect> boxes;
      for (const auto& item : scene.items)
        if (const auto* const run = std::get_if<ui::TextRun>(&item)) boxes.push_back(run->box);
      ASSERT_GE(boxes.size(), family == WidgetFamily::systemSmall ? 1u : 5u);
      const auto room = ui::Rect{{}, scene.size}.inset(16 - 0.01);
      for (auto a = boxes.begin(); a != boxes.end(); ++a) {
        EXPECT_TRUE(a->origin.x >= room.origin.x && a->right() <= room.right());
        EXPECT_TRUE(a->origin.y >= room.origin.y && a->bottom() <= room.bottom());
        for (auto b = boxes.begin(); b != a; ++b)
          EXPECT_TRUE(a->origin.y >= b->bottom() || b->origin.y >= a->bottom() || a->origin.x >= b->right() ||
                      b->origin.x >= a->right());
      }
    }
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
