#pragma once

#include "tarno/ui/description/description.hpp"
#include "tarno/ui/scene.hpp"

namespace ui {

/// What is drawn, from bottom to top.
Description describe(const Scene& scene);

/// What a screen reader stops at.
Description describeAccessibility(const Scene& scene);

}  // namespace ui
