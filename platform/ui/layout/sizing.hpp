#pragma once

#include "tarno/ui/layout/environment.hpp"
#include "tarno/ui/layout/layout_pass.hpp"
#include "tarno/ui/view.hpp"

namespace ui {

/// The size that `view` takes when it is offered `proposal`, where `environment` holds. Neither is ever
/// negative. An infinite length offers as much as the view likes, and a shape then is that long.
Size sizeThatFits(const View& view, const Environment& environment, const Size& proposal, LayoutPass& pass);

/// The share of the room left over that comes before what is aligned.
constexpr double fraction(HorizontalAlignment alignment) {
  return alignment == HorizontalAlignment::leading ? 0 : 0.5;
}
constexpr double fraction(VerticalAlignment) { return 0.5; }

/// How much larger than its content a padded view is.
Size paddingSize(const nodes::Padding& padding);

/// `size` less `taken`, but never negative.
Size reduced(const Size& size, const Size& taken);

}  // namespace ui
