#pragma once

#include <string>
#include <tuple>

#include "tarno/widget/timeline/widget_provider.hpp"
#include "tarno/widget/views/widget_view.hpp"
#include "tarno/widgetkit/widget_bundle.hpp"

/// The widget of the extension: its texts and sizes for the host, its provider and its view.
struct TarnoMacStatusWidget {
  using Configuration = widgetkit::StaticConfiguration<TarnoMacWidgetProvider, TarnoMacWidgetView>;

  const std::string kind = "TarnoMacWidget";

  Configuration body() const;
};

/// The main type of the extension, which lists its widgets.
struct TarnoMacWidgetBundle : widgetkit::WidgetBundle<TarnoMacWidgetBundle> {
  std::tuple<TarnoMacStatusWidget> body() const;
};

/// The main function of the extension, for widgetkit::NSExtensionMain: starts the bundle and returns 0.
extern "C" int TarnoMacWidget_main();
