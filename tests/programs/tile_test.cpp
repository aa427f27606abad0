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

bool overlap(const ui::Rect& a, const ui::Rect& b) {
  return a.origin.x < b.right() && b.origin.x < a.right() && a.origin.y < b.bottom() &&
         b.origin.y < a.bottom();
}

TEST(Tile, TextsKeepToTheirMarginsAndApart) {
  const foundation::ClockOverride clock{now};
  FakeMeasurer measurer;
  for (const auto& text : {std::string{}, std::string{"M"}, std::string(60, 'w'),
                           std::string(5000, 'x') + " y", std::string{"a\nb\nc"}, std::string(200, ' ')}) {
    for (const bool stale : {false, true}) {
      for (const auto family :
           {WidgetFamily::systemSmall, WidgetFamily::systemMedium, WidgetFamily::systemLarge}) {
        const auto entry =
            entryOf(TarnoMacStatusSnapshot{.deviceName = text, .reason = text, .stale = stale}, 100000h);
        const auto scene = extension::tileScene(entry, family, measurer);
        const auto room = ui::Rect{{}, scene.size}.inset(extension::contentMargin - 0.01);
        std::vector<ui::Rect> boxes;
        for (const auto& item : scene.items)
          if (const auto* const run = std::get_if<ui::TextRun>(&item)) boxes.push_back(run->box);
        ASSERT_GE(boxes.size(), family == WidgetFamily::systemSmall ? 1u : 5u);
        for (std::size_t i = 0; i < boxes.size(); ++i) {
          EXPECT_TRUE(boxes[i].origin.x >= room.origin.x && boxes[i].right() <= room.right() &&
                      boxes[i].origin.y >= room.origin.y && boxes[i].bottom() <= room.bottom())
              << text.substr(0, 9) << " " << i;
          for (std::size_t j = 0; j < i; ++j) EXPECT_FALSE(overlap(boxes[i], boxes[j])) << text.substr(0, 9);
        }
      }
    }
  }
}

TEST(Tile, LooksAsItDid) {
  const foundation::ClockOverride clock{now};
  const struct {
    const char* name;
    WidgetFamily family;
    std::optional<TarnoMacStatusSnapshot> status;
    foundation::Date::duration age;
    double scale;
  } cases[] = {
      {"locked-medium", WidgetFamily::systemMedium,
       TarnoMacStatusSnapshot{.deviceName = "Kivo's Mac",
                              .status = TarnoMacStatus::locked,
                              .reason = "Mac locked.",
                              .facePresent = true,
                              .companionPresent = true,
                              .inputIdleSeconds = 3.0},
       4s, 2},
      {"stale-small", WidgetFamily::systemSmall,
       TarnoMacStatusSnapshot{.status = TarnoMacStatus::locked, .facePresent = true, .stale = true}, 3h, 1},
      {"locking-large", WidgetFamily::systemLarge,
       TarnoMacStatusSnapshot{
           .deviceName = "書斎のマック 🖥️ حاسوب المكتب",
           .status = TarnoMacStatus::locking,
           .reason = "Nobody in front of the Mac; locking it in a few seconds unless a face, the "
                     "watch or some input is noticed before then."},
       61s, 1},
      {"none-medium", WidgetFamily::systemMedium, {}, 0s, 1},
      {"unlocked-small", WidgetFamily::systemSmall,
       TarnoMacStatusSnapshot{.status = TarnoMacStatus::unlocked}, 0s, 3},
  };
  for (const auto& c : cases) {
    render::TextEngine text;
    const auto scene = extension::tileScene(entryOf(c.status, c.age), c.family, text);
    EXPECT_TRUE(matchesReference(encodeImage(scene, text, render::ImageFormat::png, c.scale), c.name));
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

/// Draws a tile in a process whose fontconfig does not know the rounded face; 0 when it looks as it did.
int drawWithoutRoundedFace() {
  const auto configuration = testing::TempDir() + "without_rounded_face.conf";
  std::ofstream(configuration)
      << R"(<fontconfig><include>/etc/fonts/fonts.conf</include><selectfont><rejectfont>
      <glob>*/quicksand/*</glob></rejectfont></selectfont></fontconfig>)";
  setenv("FONTCONFIG_FILE", configuration.c_str(), 1);
  if (render::hasRoundedFace()) return 1;
  const foundation::ClockOverride clock{now};
  render::TextEngine text;
  const auto scene =
      extension::tileScene(entryOf(TarnoMacStatusSnapshot{.deviceName = "Kivo's حاسوب",
                                                          .status = TarnoMacStatus::locking,
                                                          .reason = "A text of more than one line, and π.",
                                                          .facePresent = true},
                                   4s),
                           WidgetFamily::systemMedium, text);
  const auto same =
      matchesReference(encodeImage(scene, text, render::ImageFormat::png, 1), "plain-face-medium");
  return same ? 0 : 2;
}

TEST(Tile, KeepsItsLayoutWithoutTheRoundedFace) {
  EXPECT_TRUE(render::hasRoundedFace());
  testing::FLAGS_gtest_death_test_style =
      "threadsafe";  // a new process, whose fontconfig has read nothing yet
  EXPECT_EXIT(std::exit(drawWithoutRoundedFace()), testing::ExitedWithCode(0), "");
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
  const auto code = [](const auto& exception) {
    try {
      extension::drawn([&] { throw exception; });
    } catch (const program::Failure& failure) {
      return failure.exitCode();
    }
    return 0;
  };
  EXPECT_EQ(code(render::ImageError{"too large"}), EX_USAGE);
  EXPECT_EQ(code(std::runtime_error{"no such font"}), EX_DATAERR);
  EXPECT_THROW(code(std::bad_alloc{}), std::bad_alloc);
}

TEST(Extension, HostGetsTheWidgetAndItsAnswer) {
  EXPECT_EQ(
      extension::withWidget([](const auto& widget) { return static_cast<int>(widget.families.size()); }), 3);
  EXPECT_THROW(extension::withWidget([](const auto&) -> int { throw std::runtime_error{"host"}; }),
               std::runtime_error);
}

}  // namespace
