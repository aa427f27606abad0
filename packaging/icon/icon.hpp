#pragma once

#include "tarno/ui/scene.hpp"

/// The application's icon: the tile's ring and its lock, in the tile's colours.
namespace icon {

/// The icon for a square of `side` pixels, a point each. What a small one has no pixels for is left out.
ui::Scene scene(int side);

}  // namespace icon
