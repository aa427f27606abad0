#pragma once

#include <optional>
#include <string>

#include "tarno/foundation/date.hpp"
#include "tarno/tarno-desktop/placement.hpp"

namespace CLI {
class App;
}

namespace desktop {

/// The position of the tile in the stack of windows: below all, among them, or above them.
enum class Layer { desktop, normal, above };

/// How and where the tile is shown. Every option of the tile can also be set in the settings file; the
/// command line wins.
struct Options {
  std::string family = "medium";       ///< "small", "medium" or "large"; passed to the frame process
  Anchor anchor;                       ///< top right
  Margin margin{16, 16, 16, 16};       ///< to the edges that the tile is anchored to, in points
  std::optional<std::string> monitor;  ///< the connector; absent: the primary monitor
  Layer layer = Layer::desktop;
  std::optional<double> scale;           ///< pixels per point; absent: the scale of the monitor
  bool plainWindow = false;              ///< on Wayland, always use an ordinary window
  bool listMonitors = false;             ///< only on the command line, like the next one
  std::optional<std::string> autostart;  ///< "on" or "off"
  std::optional<tarno::Date> at;         ///< freezes the clock at this date
};

/// Adds the options to `app`, which reads them into `options`. `options` must outlive the parsing.
void addOptions(CLI::App& app, Options& options);

}  // namespace desktop
