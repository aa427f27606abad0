#pragma once

#include "tarno/ui/scene.hpp"

/// The application's icon: the tile's ring and its lock, in the tile's colours.
namespace icon {

/// Returns the icon for a square of `side` pixels, at one pixel per point. Small icons have no ring.
ui::Scene scene(int side);

}  // namespace icon
