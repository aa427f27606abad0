#pragma once

#include "tarno/ui/layout/environment.hpp"
#include "tarno/ui/layout/layout_pass.hpp"
#include "tarno/ui/view.hpp"

namespace ui {

/// Returns the size that `view` takes in `environment` when it is offered `proposal`. No length is negative.
/// An infinite length offers unlimited space, all of which a shape takes.
Size sizeThatFits(const View& view, const Environment& environment, const Size& proposal, LayoutPass& pass);

/// Returns how much of the unused space goes before the aligned content, from 0 to 1.
constexpr double fraction(HorizontalAlignment alignment) {
  return alignment == HorizontalAlignment::leading ? 0 : 0.5;
}
constexpr double fraction(VerticalAlignment) { return 0.5; }

/// Returns how much a padding adds to the size of its content.
Size paddingSize(const nodes::Padding& padding);

/// Returns `size` minus `taken`, but at least 0.
Size reduced(const Size& size, const Size& taken);

}  // namespace ui
