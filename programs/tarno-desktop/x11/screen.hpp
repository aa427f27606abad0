#pragma once

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "tarno/tarno-desktop/surface.hpp"
#include "tarno/x11/connection.hpp"

namespace desktop::x11 {

/// A visible top-level window, such as a frame, and the windows in it.
struct Window {
  std::vector<xcb_window_t> ids;  ///< the window itself first
  Area area;
  bool isOverlay = false;  ///< not managed, such as a panel of the window manager
  bool isDesktop = false;  ///< the desktop of a file manager or window manager, or a tile
  bool isFullScreen = false;
  std::vector<int> strut;  ///< the 12 values of _NET_WM_STRUT_PARTIAL, or empty
  bool hasClient = false;  ///< the window manager lists it, or a window in it
};

/// The state of a screen at one moment, as far as it concerns the tile. Areas are in pixels.
struct Screen {
  Area area;                           ///< of the root window; struts count from its edges
  std::vector<Monitor> monitors;       ///< the active monitors in the display's order
  std::vector<Window> windows;         ///< bottom to top
  Area workArea;                       ///< the part of the screen that the window manager leaves free
  std::vector<Area> monitorWorkAreas;  ///< the same for single monitors, if known
  std::string windowManager;           ///< its name; empty without one
  std::vector<xcb_atom_t> supported;   ///< the hints and messages that the window manager follows
  bool isComposited = false;           ///< transparency shows

  /// Whether the window manager follows a hint or a message. Never without a window manager.
  bool supports(xcb_atom_t hint) const { return std::ranges::count(supported, hint) != 0; }
};

/// Reads the state of the screen and requests events for its changes. `scale` overrides the scale of the
/// session.
Screen readScreen(const Connection& connection, std::optional<double> scale);

/// Returns the part of a monitor that panels leave free. It considers struts, panels of the window manager
/// outside of its work area, and the work area of the monitor itself.
Area freeArea(const Area& monitor, const Screen& screen);

}  // namespace desktop::x11
