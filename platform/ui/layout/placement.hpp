#pragma once

#include <optional>
#include <vector>

#include "tarno/ui/layout/environment.hpp"
#include "tarno/ui/layout/layout_pass.hpp"
#include "tarno/ui/scene.hpp"
#include "tarno/ui/view.hpp"

namespace ui {

/// The result of placing a view, in the coordinates of the container.
struct DisplayList {
  std::vector<SceneItem> items;
  std::vector<AccessibilityElement> accessibility;
  std::optional<Color> containerBackground;  ///< the outermost one found
};

/// The place of a view: the size that it was offered, and the rectangle that it took. Both are needed,
/// because a view that is offered the size that it took may take less.
struct Placement {
  Size offer;
  Rect rect;
};

/// Adds the items of `view` at the place `where` to `list`.
void place(const View& view, const Environment& environment, const Placement& where, LayoutPass& pass,
           DisplayList& list);

/// Offers `offer` to `view` and centres it in `area`. The view may be larger than `area`.
void placeCentered(const View& view, const Environment& environment, const Size& offer, const Rect& area,
                   LayoutPass& pass, DisplayList& list);

}  // namespace ui
