#pragma once

#include "ui/description/description.hpp"
#include "ui/view.hpp"

namespace ui {

/// A view as it was written: one node per view and modifier, the outermost first.
Description describe(const View& view);

}  // namespace ui
