#pragma once

#include <memory>

#include "tarno/tarno-desktop/surface.hpp"

namespace desktop {

/// Returns a surface for the tile on the Wayland display that WAYLAND_DISPLAY names: a layer-shell surface,
/// or a plain window if the options ask for one. Returns null if the compositor has no layer-shell and the
/// options ask for no plain window. Throws program::Failure (EX_UNAVAILABLE) if there is no display. Copies
/// `options`.
std::unique_ptr<Surface> openWaylandSurface(const Options& options);

}  // namespace desktop
