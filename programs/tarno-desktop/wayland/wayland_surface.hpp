#pragma once

#include <memory>

#include "tarno/tarno-desktop/surface.hpp"

namespace desktop {

/// The tile on the Wayland display that WAYLAND_DISPLAY names: a layer-shell surface, or a plain window where
/// the options ask for one. Null when the compositor has no layer-shell and no plain window was asked for.
/// Throws program::Failure (EX_UNAVAILABLE) when there is no display. `options` are copied.
std::unique_ptr<Surface> openWaylandSurface(const Options& options);

}  // namespace desktop
