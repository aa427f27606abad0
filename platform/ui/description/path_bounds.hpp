#pragma once

#include "tarno/ui/path.hpp"

namespace ui {

/// The smallest rectangle around an outline, without the width of a stroke. Nothing at the origin for no
/// outline.
Rect bounds(const Path& path);

}  // namespace ui
