#pragma once

#include <optional>
#include <string>

#include "ui/geometry.hpp"
#include "widgetkit/timeline.hpp"

namespace CLI {
class App;
}

namespace desktop {

/// Where the tile stands in the stack of windows: below all of them, among them, or above them.
enum class Layer { desktop, normal, above };

/// What the command line says.
struct Options {
  widgetkit::WidgetFamily family = widgetkit::WidgetFamily::systemMedium;
  ui::Alignment anchor{{1}, {0}};      ///< top right
  int margin = 16;                     ///< from the edges that the tile is anchored to, in points
  std::optional<std::string> monitor;  ///< by connector; the primary one when absent
  Layer layer = Layer::desktop;
  bool listMonitors = false;
};

/// Makes `app` read its options into `options`, which outlives the parsing.
void addOptions(CLI::App& app, Options& options);

}  // namespace desktop
