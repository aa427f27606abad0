#include "tarno-widget/tile.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

#include "render/image.hpp"
#include "support/fake_measurer.hpp"
#include "support/pixel_reference.hpp"
#include "tarno-widget/drawing.hpp"
#include "tarno-widget/extension.hpp"
#include "tarno-widget/inspection.hpp"
#include "ui/symbols/symbol.hpp"
#include "widget/views/widget_view.hpp"

namespace {

using namespace std::chrono;
using widgetkit::WidgetFamily;

constexpr foundation::Date now = sys_days{2026y / November / 16} + 15h;

widgetkit::AnyTimelineEntry entryOf(const std::optional<TarnoMacStatusSnapshot>& status,
                                    foundation::Date::duration age) {
  const TarnoMacWidgetEntry entry{now, status, status ? std::optional{now - age} : std::nullopt};
  return widgetkit::AnyTimelineEntry::of(entry, TarnoMacWidgetView{entry});
}

TEST(Tile, TextsKeepToTheirMarginsAndApart) {
  const foundation::ClockOverride clock{now};
  FakeMeasurer measurer;
  for (const auto& text : {std::string{}, std::string(60, 'w'), std::string(5000, 'x') + " y",
                           std::string{"a\nb\nc"}, std::string(200, ' ')})
    for (const auto family :
         {WidgetFamily::systemSmall, WidgetFamily::systemMedium, WidgetFamily::systemLarge}) {
      SCOPED_TRACE(text.substr(0, 9));
      const auto scene =
          extension::tileScene(entryOf({{.deviceName = text, .reason = text}}, 100000h), family, measurer);
      std::vector<ui::Rect> boxes;
      for (const auto& item : scene.items)
        if (const auto* const run = std::get_if<ui::TextRun>(&item)) boxes.push_back(run->box);
      ASSERT_GE(boxes.size(), family == WidgetFamily::systemSmall ? 1u : 5u);
      const auto room = ui::Rect{{}, scene.size}.inset(16 - 0.01);
      for (auto a = boxes.begin(); a != boxes.end(); ++a) {
        EXPECT_TRUE(a->origin.x >= room.origin.x && a->right() <= room.right());
        EXPECT_TRUE(a->origin.y >= room.origin.y && a->bottom() <= room.bottom());
        for (auto b = boxes.begin(); b != a; ++b)
          EXPECT_FALSE(a->origin.x < b->right() && b->origin.x < a->right() && a->origin.y < b->bottom() &&
                       b->origin.y < a->bottom());
      }
    }
}

testing::AssertionResult looksAsItDid(const char* name, const std::optional<TarnoMacStatusSnapshot>& status,
                                      foundation::Date::duration age, WidgetFamily family, double scale) {
  const foundation::ClockOverride clock{now};
  render::TextEngine text;
  const auto scene = extension::tileScene(entryOf(status, age), family, text);
  return matchesReference(encodeImage(scene, text, render::ImageFormat::png, scale), name);
}

TEST(Tile, LooksAsItDid) {
  EXPECT_TRUE(looksAsItDid("locked-medium",
                           {{.deviceName = "Kivo's Mac",
                             .status = TarnoMacStatus::locked,
                             .reason = "Mac locked.",
                             .facePresent = true,
                             .companionPresent = true,
                             .inputIdleSeconds = 3.0}},
                           4s, WidgetFamily::systemMedium, 2));
  EXPECT_TRUE(looksAsItDid("stale-small",
                           {{.status = TarnoMacStatus::locked, .facePresent = true, .stale = true}}, 3h,
                           WidgetFamily::systemSmall, 1));
  EXPECT_TRUE(
      looksAsItDid("locking-large",
                   {{.deviceName = "書斎のマック 🖥️ حاسوب المكتب",
                     .status = TarnoMacStatus::locking,
                     .reason = "Nobody in front of the Mac; locking it in a few seconds unless a face, the "
                               "watch or some input is noticed before then."}},
                   61s, WidgetFamily::systemLarge, 1));
  EXPECT_TRUE(looksAsItDid("none-medium", {}, 0s, WidgetFamily::systemMedium, 1));
  EXPECT_TRUE(looksAsItDid("unlocked-small", {{.status = TarnoMacStatus::unlocked}}, 0s,
                           WidgetFamily::systemSmall, 3));
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

/// For a new process, whose fontconfig has read nothing yet: ends it with 0 when the tile looks as it did.
[[noreturn]] void drawWithoutRoundedFace() {
  const auto configuration = testing::TempDir() + "without_rounded_face.conf";
  std::ofstream(configuration)
      << R"(<fontconfig><include>/etc/fonts/fonts.conf</include><selectfont><rejectfont>
      <glob>*/quicksand/*</glob></rejectfont></selectfont></fontconfig>)";
  setenv("FONTCONFIG_FILE", configuration.c_str(), 1);
  std::exit(looksAsItDid("plain-face-medium",
                         {{.deviceName = "Kivo's حاسوب",
                           .status = TarnoMacStatus::locking,
                           .reason = "A text of more than one line, and π.",
                           .facePresent = true}},
                         4s, WidgetFamily::systemMedium, 1)
                ? 0
                : 1);
}

TEST(Tile, KeepsItsLayoutWithoutTheRoundedFace) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_EXIT(drawWithoutRoundedFace(), testing::ExitedWithCode(0), "");
}

TEST(Inspection, ShowsEverythingForOneReadingOfTheClock) {
  auto moment = now;
  const foundation::ClockOverride clock{[&] { return moment += 1s; }};
  extension::withWidget([](const auto& widget) {
    FakeMeasurer measurer;
    const auto shown = extension::inspection(
        widget, {WidgetFamily::systemMedium, extension::Request::placeholder}, measurer);
    EXPECT_EQ(shown.entry.date, now + 1s);
    EXPECT_EQ(std::any_cast<TarnoMacWidgetEntry>(shown.entry.value).lastRefresh, now + 1s);
    EXPECT_NE(outline(shown.accessibility).find("\"0s ago\""), std::string::npos);
    return 0;
  });
}

TEST(Drawing, FailuresNameTheirCause) {
  const auto drawing = [](const auto& exception) { return extension::drawn([&] { throw exception; }); };
  try {
    drawing(std::runtime_error{"no such font"});
  } catch (const program::Failure& failure) {
    EXPECT_EQ(failure.exitCode(), EX_DATAERR);
  }
  EXPECT_THROW(drawing(std::bad_alloc{}), std::bad_alloc);
}

}  // namespace
