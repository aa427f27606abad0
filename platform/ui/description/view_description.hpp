#pragma once

#include "tarno/ui/description/description.hpp"
#include "tarno/ui/view.hpp"

namespace ui {

/// Returns the description of a view as it was written: one node per view and modifier, the outermost first.
Description describe(const View& view);

}  // namespace ui
