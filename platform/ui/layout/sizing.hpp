#pragma once

#include "tarno/ui/layout/environment.hpp"
#include "tarno/ui/layout/layout_pass.hpp"
#include "tarno/ui/view.hpp"

namespace ui {

/// Returns the size that `view` takes in `environment` when it is offered `proposal`. Neither is negative. An
/// infinite length offers unlimited space; a shape then takes all of it.
Size sizeThatFits(const View& view, const Environment& environment, const Size& proposal, LayoutPass& pass);

/// Returns the fraction of the unused space that goes before the aligned content.
constexpr double fraction(HorizontalAlignment alignment) {
  return alignment == HorizontalAlignment::leading ? 0 : 0.5;
}
constexpr double fraction(VerticalAlignment) { return 0.5; }

/// Returns how much a padding adds to the size of its content.
Size paddingSize(const nodes::Padding& padding);

/// Returns `size` minus `taken`, but at least 0.
Size reduced(const Size& size, const Size& taken);

}  // namespace ui
