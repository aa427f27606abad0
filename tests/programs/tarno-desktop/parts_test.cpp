#include <glib.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>

#include "tarno-desktop/live_tile.hpp"
#include "tarno-desktop/placement.hpp"
#include "tarno-desktop/time_zone_watch.hpp"
#include "widgetkit/reload_schedule.hpp"

namespace {

using namespace std::chrono_literals;
using foundation::Date;
using widgetkit::TimelineReloadPolicy;

TEST(Placement, PutsATileAtEachOfTheNinePlaces) {
  const int x[] = {110, 418, 726}, y[] = {60, 265, 470};
  for (std::size_t i = 0; i < 9; ++i)
    EXPECT_EQ(desktop::place({364, 170}, {100, 50, 1000, 600},
                             *desktop::anchorNamed(desktop::anchorNames()[i]), 10),
              (desktop::Area{x[i % 3], y[i / 3], 364, 170}));
  EXPECT_EQ(desktop::place({364, 170}, {100, 50, 200, 100}, *desktop::anchorNamed("bottom-right"), 10),
            (desktop::Area{100, 50, 364, 170}))
      << "a tile that does not fit";
}

TEST(ReloadSchedule, NeverAsksBeforeLongEvenOfABrokenProvider) {
  const Date now{1'000'000s};
  const std::pair<std::optional<Date>, Date> cases[] = {{now + 30s, now + 30s},
                                                        {now - 1h, now + 5s},
                                                        {Date::min(), now + 5s},
                                                        {now, now + 5s},
                                                        {Date::max(), foundation::latestDate},
                                                        {std::nullopt, now + 30s}};
  for (const auto& [reload, next] : cases)
    EXPECT_EQ(widgetkit::nextRequest(
                  now, reload ? std::optional{TimelineReloadPolicy::after(*reload)} : std::nullopt),
              next);
}

TEST(LiveTile, KeepsWhatItShowsWhenARequestOrADrawingFails) {
  struct Provider final : widgetkit::AnyTimelineProvider {
    mutable std::string answer;  ///< a label, "no view", "no entry" or "failure"
    widgetkit::AnyTimelineEntry placeholder(const widgetkit::TimelineProviderContext&) const override {
      return {};
    }
    widgetkit::AnyTimelineEntry snapshot(const widgetkit::TimelineProviderContext&) const override {
      return {};
    }
    widgetkit::AnyTimeline timeline(const widgetkit::TimelineProviderContext&) const override {
      if (answer == "failure") throw std::runtime_error{"the store is on fire"};
      const auto view = [label = answer](const auto&) {
        return label == "no view" ? throw std::runtime_error{label}
                                  : ui::Image("clock").accessibilityElement(label);
      };
      widgetkit::AnyTimeline timeline{{{{}, {}, view}}, TimelineReloadPolicy::after(Date{30s})};
      if (answer == "no entry") timeline.entries.clear();
      return timeline;
    }
  };
  const auto provider = std::make_shared<Provider>();
  desktop::LiveTile tile{{.provider = provider}, widgetkit::WidgetFamily::systemSmall};
  const struct {
    const char *answer, *shown;
    bool isChanged;
  } rounds[] = {{"first", "first", true},    {"failure", "first", false}, {"no entry", "first", false},
                {"no view", "first", false}, {"last", "last", true},      {"last", "last", false}};
  for (const auto& [answer, shown, isChanged] : rounds) {
    provider->answer = answer;
    EXPECT_EQ(tile.ask().has_value(), provider->answer != "failure");
    EXPECT_EQ(tile.refresh(), isChanged) << answer;
    ASSERT_EQ(tile.scene().accessibility.size(), 1U);
    EXPECT_EQ(tile.scene().accessibility.front().label, shown);
  }
}

TEST(TimeZoneWatch, TellsAboutItsFileAlone) {
  const auto folder = std::filesystem::temp_directory_path() / ("tarno-zone-" + std::to_string(getpid()));
  std::filesystem::create_directory(folder);
  int changes = 0;
  {
    const desktop::TimeZoneWatch watch{[&] { ++changes; }, folder / "localtime"};
    std::ofstream{folder / "hostname"} << "tarno";
    g_main_context_iteration(nullptr, FALSE);
    EXPECT_EQ(changes, 0);
    std::filesystem::create_symlink("/usr/share/zoneinfo/UTC", folder / "new");
    std::filesystem::rename(folder / "new", folder / "localtime");
    g_main_context_iteration(nullptr, FALSE);
    EXPECT_EQ(changes, 1);
  }
  std::filesystem::remove_all(folder);
}

}  // namespace
