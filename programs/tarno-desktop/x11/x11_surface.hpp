#pragma once

#include <memory>

#include "tarno/tarno-desktop/surface.hpp"

namespace desktop {

/// The tile as an X11 window on the display that DISPLAY names. Throws program::Failure (EX_UNAVAILABLE) when
/// there is none. `options` are copied.
std::unique_ptr<Surface> openX11Surface(const Options& options);

}  // namespace desktop
