#pragma once

#include <memory>
#include <string>

#include "tarno/tarno-desktop/surface.hpp"

namespace desktop {

/// A surface on the best available display, and why a better one is not used.
struct OpenedSurface {
  std::unique_ptr<Surface> surface;
  std::string reason;  ///< empty if it is the best
};

/// Opens a surface: layer-shell if a Wayland compositor has it, otherwise X11 (on Wayland through Xwayland),
/// and a plain Wayland window as the last choice or if the options ask for it. Throws program::Failure
/// (EX_UNAVAILABLE) without a display.
OpenedSurface openSurface(const Options& options);

/// Shows the tile on a display and to screen readers until a signal ends the program or somebody closes the
/// tile. Returns the exit code. Throws program::Failure: EX_UNAVAILABLE if there is no display, or it
/// disappears and does not come back; EX_PROTOCOL if the connection breaks.
int showTile(const Options& options);

}  // namespace desktop
