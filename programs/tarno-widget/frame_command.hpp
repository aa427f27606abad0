#pragma once

#include "tarno/widgetkit/widget_configuration.hpp"

namespace extension {

struct FrameOptions {
  widgetkit::WidgetFamily family = widgetkit::WidgetFamily::systemMedium;
  double scale = 1;     ///< pixels per point
  int descriptor = -1;  ///< of the shared memory to draw into
};

/// Asks for a timeline, draws its entry into shared memory and prints one line of JSON that tells a host
/// what it needs to show the tile and when to ask again; docs/frame.md describes both. When there is no
/// picture, the line says why. Returns the program's exit code.
int frame(const widgetkit::WidgetConfiguration& widget, const FrameOptions& options);

}  // namespace extension
