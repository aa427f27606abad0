#pragma once

#include "tarno/ui/path.hpp"

namespace ui {

/// Returns the smallest rectangle around an outline, without the width of a stroke; an empty one at the
/// origin for an empty outline.
Rect bounds(const Path& path);

}  // namespace ui
