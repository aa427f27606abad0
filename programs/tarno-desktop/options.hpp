#pragma once

#include <optional>
#include <string>

#include "tarno/foundation/date.hpp"
#include "tarno/tarno-desktop/placement.hpp"

namespace CLI {
class App;
}

namespace desktop {

/// Where the tile stands in the stack of windows: below all of them, among them, or above them.
enum class Layer { desktop, normal, above };

/// Where and how the tile is shown. Every option of the tile can stand in the settings file; the command line
/// wins.
struct Options {
  std::string family = "medium";       ///< "small", "medium" or "large"; passed on to the extension's process
  Anchor anchor;                       ///< top right
  int margin = 16;                     ///< from the edges that the tile is anchored to, in points
  std::optional<std::string> monitor;  ///< by connector; the primary one when absent
  Layer layer = Layer::desktop;
  std::optional<double> scale;  ///< pixels per point; the monitor's own when absent
  bool plainWindow = false;     ///< on a Wayland compositor without layer-shell: a window among others
  bool listMonitors = false;    ///< on the command line only, as the next one
  std::optional<std::string> autostart;  ///< "on" or "off"
  std::optional<tarno::Date> at;         ///< the tile's clock stands still there
};

/// Makes `app` read its options into `options`, which outlives the parsing.
void addOptions(CLI::App& app, Options& options);

}  // namespace desktop
