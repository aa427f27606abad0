#pragma once

#include <gdk/gdk.h>

#include <optional>
#include <string>
#include <vector>

#include "tarno-desktop/placement.hpp"

namespace desktop {

struct Monitor {
  GdkMonitor* handle = nullptr;  ///< the display's; gone when the monitor goes
  std::string connector;         ///< "HDMI-1"
  Area area;                     ///< on the desktop, in points
  int scale = 1;                 ///< pixels a point
  bool isPrimary = false;
};

/// What the display has now, in its order. One is the primary one, the first where the session names none.
std::vector<Monitor> monitors(GdkDisplay* display);

/// The monitor at `connector`; the primary one when it is absent or not there; nothing when there is no
/// monitor at all.
std::optional<Monitor> chooseMonitor(const std::vector<Monitor>& present,
                                     const std::optional<std::string>& connector);

/// The part of a monitor that panels leave free, where the session tells (X11); else all of it.
Area freeArea(const Monitor& monitor);

/// One line a monitor: "HDMI-1 1920x1080+0+0 scale 2 primary".
std::string monitorList(const std::vector<Monitor>& present);

}  // namespace desktop
