#pragma once

#include "tarno/ui/path.hpp"

namespace ui {

/// Returns the smallest rectangle around an outline, not counting the width of a stroke. That of an empty
/// outline is empty and at the origin.
Rect bounds(const Path& path);

}  // namespace ui
