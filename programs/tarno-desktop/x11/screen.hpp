#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tarno/tarno-desktop/surface.hpp"
#include "tarno/x11/connection.hpp"

namespace desktop::x11 {

/// A window on the screen itself that is seen, such as a frame, and what is in it.
struct Window {
  std::vector<xcb_window_t> ids;  ///< of the window itself, then of those in it
  Area area;
  bool isOverlay = false;  ///< not managed: such as a window manager's own panel
  bool isDesktop = false;  ///< of a file manager; or a tile
  bool isFullScreen = false;
  std::vector<int> strut;  ///< the 12 values of _NET_WM_STRUT_PARTIAL, or nothing
};

/// All that concerns the tile on a screen, at one moment. Areas are in pixels.
struct Screen {
  Area area;                           ///< of the root window, from whose edges struts count
  std::vector<Monitor> monitors;       ///< that are on, in the display's order
  std::vector<Window> windows;         ///< bottom to top
  Area workArea;                       ///< what the window manager leaves of the whole screen
  std::vector<Area> monitorWorkAreas;  ///< the same of single monitors, as far as it is known
  std::string windowManager;           ///< its name; empty without one
  bool isComposited = false;           ///< transparency shows
};

/// Looks at the screen, and asks for events when any of this changes. `scale` overrides the session's.
Screen readScreen(const Connection& connection, std::optional<double> scale);

/// What panels leave of a monitor: struts that reach into it, panels of the window manager's own, which lie
/// where its work area does not, and what it says about the monitor itself.
Area freeArea(const Area& monitor, const Screen& screen);

}  // namespace desktop::x11
