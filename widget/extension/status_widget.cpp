#include "tarno/widget/extension/status_widget.hpp"

TarnoMacStatusWidget::Configuration TarnoMacStatusWidget::body() const {
  using enum widgetkit::WidgetFamily;
  return Configuration{.kind = kind}
      .configurationDisplayName({"Tarno"})
      .description({"Mac lock status and presence signals."})
      .supportedFamilies({systemSmall, systemMedium, systemLarge});
}

std::tuple<TarnoMacStatusWidget> TarnoMacWidgetBundle::body() const {
  return widgetkit::buildBlock(TarnoMacStatusWidget{});
}

extern "C" int TarnoMacWidget_main() {
  TarnoMacWidgetBundle::main();
  return 0;
}
