#pragma once

#include "ui/scene.hpp"
#include "ui/text_measurer.hpp"
#include "ui/view.hpp"

namespace ui {

/// The room that a view gets in its container. A NaN or a negative length counts as 0, and lengths end at
/// `longestLength`.
struct ContainerShape {
  Size size;                 ///< of the whole container
  double contentMargin = 0;  ///< on every side, between the container's edge and the view
  double cornerRadius = 0;   ///< the container's corners are cut to this
};

/// Places `view` in a container and resolves everything about it. Reads nothing but its arguments, and calls
/// `measurer` on the caller's thread.
///
/// The rules, in short. A parent proposes a size, a child answers with its own, the parent places it. A stack
/// takes its spacing off what it was offered, then offers the rest to its children from the least flexible to
/// the most, each an equal share of what is left. A frame's fixed lengths replace the proposal; its maximum
/// lets it grow to the proposal, up to the maximum and never below its content. A text that does not fit
/// shrinks to its minimum scale factor, then is cut. A container background fills the container to its edge.
Scene layout(const View& view, const ContainerShape& container, TextMeasurer& measurer);

}  // namespace ui
