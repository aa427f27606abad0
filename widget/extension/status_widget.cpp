#include "tarno/widget/extension/status_widget.hpp"

#include "tarno/widget/timeline/widget_provider.hpp"
#include "tarno/widget/views/widget_view.hpp"

widgetkit::WidgetConfiguration TarnoMacStatusWidget::body() const {
  using enum widgetkit::WidgetFamily;
  const auto content = [](const TarnoMacWidgetEntry& entry) { return TarnoMacWidgetView{entry}; };
  return widgetkit::StaticConfiguration(kind, TarnoMacWidgetProvider{}, content)
      .configurationDisplayName({"Tarno"})
      .description({"Mac lock status and presence signals."})
      .supportedFamilies({systemSmall, systemMedium, systemLarge});
}

widgetkit::WidgetConfigurations TarnoMacWidgetBundle::body() const {
  return widgetkit::buildBlock(TarnoMacStatusWidget{});
}

extern "C" int TarnoMacWidget_main() {
  widgetkit::bundleMain<TarnoMacWidgetBundle>();
  return 0;
}
