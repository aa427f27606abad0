#pragma once

#include <string>

#include "tarno/widgetkit/widget_bundle.hpp"

/// The one widget of the extension: what the host learns about it, its provider and its content rule.
struct TarnoMacStatusWidget {
  const std::string kind = "TarnoMacWidget";

  widgetkit::WidgetConfiguration body() const;
};

/// The extension's main type.
struct TarnoMacWidgetBundle {
  widgetkit::WidgetConfigurations body() const;
};

/// The extension's main function, for widgetkit::NSExtensionMain: hands control to the bundle, returns 0.
extern "C" int TarnoMacWidget_main();
