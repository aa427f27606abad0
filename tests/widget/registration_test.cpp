#include <gtest/gtest.h>

#include "widget/extension/status_widget.hpp"
#include "widget/views/widget_view.hpp"

namespace {

using namespace widgetkit;

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

TEST(Registration, ContentIsTheViewOfTheEntryInTheFamilyOfTheEnvironment) {
  const foundation::ClockOverride clock{foundation::Date{}};
  const auto widget = TarnoMacStatusWidget{}.body();
  const auto entry = widget.provider->placeholder({});
  const TarnoMacWidgetView view{TarnoMacWidgetEntry::placeholder()};
  for (const auto family : widget.families)
    EXPECT_EQ(entry.content({.widgetFamily = family}), view.body({.widgetFamily = family}));
  EXPECT_EQ(entry.content({}), view.body({.widgetFamily = WidgetFamily::systemMedium}));
}

}  // namespace
