#pragma once

#include "tarno/ui/description/description.hpp"
#include "tarno/ui/scene.hpp"

namespace ui {

/// Returns the items of a scene, from bottom to top.
Description describe(const Scene& scene);

/// Returns the elements of a scene that a screen reader finds.
Description describeAccessibility(const Scene& scene);

}  // namespace ui
