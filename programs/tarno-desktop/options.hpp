#pragma once

#include <optional>
#include <string>

#include "tarno/foundation/date.hpp"
#include "tarno/tarno-desktop/placement.hpp"

namespace CLI {
class App;
}

namespace desktop {

/// The position of the tile in the stack of windows: below all windows, among them, or above them.
enum class Layer { desktop, normal, above };

/// How and where the tile is shown, and what to do instead of showing it. The settings file can set
/// everything that is about the tile. The command line overrides it.
struct Options {
  std::string family = "medium";       ///< "small", "medium" or "large"; passed to the frame process
  Anchor anchor;                       ///< by default the top right corner
  Margin margin{16, 16, 16, 16};       ///< the distances to the edges that the tile is anchored to, in points
  std::optional<std::string> monitor;  ///< the name of its connector; absent: the primary monitor
  Layer layer = Layer::desktop;
  std::optional<double> scale;           ///< pixels per point; absent: the scale of the monitor
  bool plainWindow = false;              ///< on Wayland, always use an ordinary window
  bool listMonitors = false;             ///< print the monitors instead; only on the command line
  std::optional<std::string> autostart;  ///< "on" or "off": set autostart instead; only on the command line
  std::optional<tarno::Date> at;         ///< freezes the clock at this date
};

/// Adds the options to `app`, which writes them to `options` when it parses. `options` must outlive the
/// parsing.
void addOptions(CLI::App& app, Options& options);

}  // namespace desktop
