#pragma once

#include <optional>
#include <span>
#include <vector>

#include "tarno-desktop/placement.hpp"
#include "x11/connection.hpp"

namespace desktop::x11 {

/// A window that may be a panel.
struct PanelWindow {
  Area area;                         ///< on the screen, in pixels; nothing for what is not seen or in a frame
  std::vector<std::uint32_t> strut;  ///< 12 values of _NET_WM_STRUT_PARTIAL, 4 of _NET_WM_STRUT, or nothing
};

/// What panels leave of a monitor, in pixels. `screen` is the root window, from whose edges the Extended
/// Window Manager Hints count. `workArea` is what the window manager says to be left of the whole screen: it
/// counts where no strut explains it, as for panels of the window manager's own, on the monitors that have
/// them.
Area freeArea(const Area& monitor, const Area& screen, std::span<const PanelWindow> windows,
              const std::optional<Area>& workArea);

/// The same as it is on the display now. Asks for events when panels change.
Area readFreeArea(const Connection& connection, const Area& monitor);

}  // namespace desktop::x11
