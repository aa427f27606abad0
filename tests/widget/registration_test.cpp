#include <gtest/gtest.h>

#include "widget/extension/status_widget.hpp"
#include "widget/views/widget_view.hpp"

namespace {

using namespace widgetkit;
using namespace std::chrono_literals;

TEST(Registration, TheBundleHandsItsOneWidgetToTheHost) {
  int calls = 0;
  const int code = NSExtensionMain(TarnoMacWidget_main, [&](const WidgetConfigurations& widgets) {
    ++calls;
    ASSERT_EQ(widgets.size(), 1u);
    EXPECT_EQ(widgets[0].kind, "TarnoMacWidget");
    EXPECT_EQ(widgets[0].displayName, LocalizedStringKey{"Tarno"});
    EXPECT_EQ(widgets[0].widgetDescription, LocalizedStringKey{"Mac lock status and presence signals."});
    EXPECT_EQ(widgets[0].families, (std::vector{WidgetFamily::systemSmall, WidgetFamily::systemMedium,
                                                WidgetFamily::systemLarge}));
  });
  EXPECT_EQ(code, 0);
  EXPECT_EQ(calls, 1);
}

TEST(Registration, OnlyTheHostThatStartedTheExtensionIsServed) {
  int calls = 0;
  const auto failing = [&](const WidgetConfigurations&) {
    ++calls;
    throw std::runtime_error{"host"};
  };
  EXPECT_THROW(NSExtensionMain(TarnoMacWidget_main, failing), std::runtime_error);
  EXPECT_EQ(TarnoMacWidget_main(), 0);
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(NSExtensionMain([] { return 7; }, failing), 7);
}

struct Hour {
  foundation::Date date;
};

/// Shows the hour of its entry and the family of its environment.
struct HourView {
  Hour entry;

  ui::View body(const EnvironmentValues& environment) const {
    const auto hours = std::chrono::duration_cast<std::chrono::hours>(entry.date.time_since_epoch());
    return ui::Text(std::to_string(hours.count()) + " " + std::string{name(environment.widgetFamily)});
  }
};

struct HourProvider {
  using Entry = Hour;

  static constexpr foundation::Date start{};

  Hour placeholder(const TimelineProviderContext&) const { return {start + 1h}; }
  void getSnapshot(const TimelineProviderContext& context,
                   const std::function<void(Hour)>& completion) const {
    completion({start + (context.isPreview ? 2h : 3h)});
  }
  void getTimeline(const TimelineProviderContext&,
                   const std::function<void(Timeline<Hour>)>& completion) const {
    completion({{{start + 4h}, {start + 5h}}, TimelineReloadPolicy::after(start + 6h)});
  }
};

TEST(StaticConfiguration, HandsOnWhatItsProviderAnswersWithTheViewsOfTheEntries) {
  const auto shown = [](const AnyTimelineEntry& entry) { return entry.content({WidgetFamily::systemLarge}); };
  const auto widget =
      StaticConfiguration("Hours", HourProvider{}, [](const Hour& entry) { return HourView{entry}; });
  EXPECT_EQ(widget.kind, "Hours");
  EXPECT_EQ(shown(widget.provider->placeholder({})), ui::Text("1 systemLarge"));
  EXPECT_EQ(shown(widget.provider->snapshot({.isPreview = true})), ui::Text("2 systemLarge"));
  const auto snapshot = widget.provider->snapshot({});
  EXPECT_EQ(snapshot.date, HourProvider::start + 3h);
  EXPECT_EQ(std::any_cast<Hour>(snapshot.value).date, snapshot.date);
  EXPECT_EQ(snapshot.content({WidgetFamily::systemSmall}), ui::Text("3 systemSmall"));
  EXPECT_EQ(snapshot.content({}), ui::Text("3 systemMedium"));

  const auto timeline = widget.provider->timeline({});
  ASSERT_EQ(timeline.entries.size(), 2U);
  EXPECT_EQ(shown(timeline.entries[0]), ui::Text("4 systemLarge"));
  EXPECT_EQ(shown(timeline.entries[1]), ui::Text("5 systemLarge"));
  EXPECT_EQ(timeline.policy.date(), HourProvider::start + 6h);
}

TEST(Registration, ContentIsTheViewOfTheEntryInTheFamilyOfTheEnvironment) {
  const foundation::ClockOverride clock{foundation::Date{}};
  const auto widget = TarnoMacStatusWidget{}.body();
  const auto entry = widget.provider->placeholder({});
  for (const auto family : widget.families)
    EXPECT_EQ(entry.content({.widgetFamily = family}),
              TarnoMacWidgetView{TarnoMacWidgetEntry::placeholder()}.body({.widgetFamily = family}));
}

}  // namespace
