#pragma once

#include <memory>
#include <string>

#include "tarno/tarno-desktop/surface.hpp"

namespace desktop {

/// A surface on the best display that there is, and why it is not on a better one.
struct OpenedSurface {
  std::unique_ptr<Surface> surface;
  std::string reason;  ///< empty where it is the best
};

/// Layer-shell where a Wayland compositor has it, X11 (on Wayland: through Xwayland) else, and a plain
/// Wayland window as the last way or when the options ask for it. Throws program::Failure (EX_UNAVAILABLE)
/// without a display.
OpenedSurface openSurface(const Options& options);

/// Shows the tile on a display, for screen readers too, until a signal or somebody who closes it ends the
/// program; returns its exit code. Throws program::Failure (EX_UNAVAILABLE) without a display, or when it
/// goes away and does not come back.
int showTile(const Options& options);

}  // namespace desktop
