#pragma once

#include <memory>
#include <string>

#include "tarno/tarno-desktop/surface.hpp"

namespace desktop {

/// A surface on the best available display, and why a better one is not used.
struct OpenedSurface {
  std::unique_ptr<Surface> surface;
  std::string reason;  ///< why there is no better surface; empty if this is the best
};

/// Opens the best surface: layer-shell if the Wayland compositor has it, otherwise an X11 window (on Wayland
/// through Xwayland), otherwise a plain Wayland window. The options may ask for the last one. Throws
/// program::Failure (EX_UNAVAILABLE) if there is no display.
OpenedSurface openSurface(const Options& options);

/// Shows the tile on a display and to screen readers until a signal ends the program or somebody closes the
/// tile. Returns the exit code. Throws program::Failure: EX_UNAVAILABLE if there is no display, or it
/// disappears and does not come back; EX_PROTOCOL if the connection breaks.
int showTile(const Options& options);

}  // namespace desktop
