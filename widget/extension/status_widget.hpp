#pragma once

#include <string>
#include <tuple>

#include "tarno/widget/timeline/widget_provider.hpp"
#include "tarno/widget/views/widget_view.hpp"
#include "tarno/widgetkit/widget_bundle.hpp"

/// The one widget of the extension: what the host learns about it, its provider and its view.
struct TarnoMacStatusWidget {
  using Configuration = widgetkit::StaticConfiguration<TarnoMacWidgetProvider, TarnoMacWidgetView>;

  const std::string kind = "TarnoMacWidget";

  Configuration body() const;
};

/// The extension's main type.
struct TarnoMacWidgetBundle : widgetkit::WidgetBundle<TarnoMacWidgetBundle> {
  std::tuple<TarnoMacStatusWidget> body() const;
};

/// The extension's main function, for widgetkit::NSExtensionMain: hands control to the bundle, returns 0.
extern "C" int TarnoMacWidget_main();
