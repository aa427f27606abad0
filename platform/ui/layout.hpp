#pragma once

#include "tarno/ui/scene.hpp"
#include "tarno/ui/text_measurer.hpp"
#include "tarno/ui/view.hpp"

namespace ui {

/// The space of a view in its container. A NaN or a negative length counts as 0; lengths are limited to
/// `longestLength`.
struct ContainerShape {
  Size size;                 ///< of the whole container
  double contentMargin = 0;  ///< on every side, between the container's edge and the view
  double cornerRadius = 0;   ///< of the container background
};

/// Lays out `view` in a container. Depends only on its arguments, and calls `measurer` on the caller's
/// thread.
///
/// The rules, in short. A parent proposes a size, a child answers with its own, the parent places it. A stack
/// takes its spacing off what it was offered, then offers the rest to its children from the least flexible to
/// the most, each an equal share of what is left. A frame's fixed lengths replace the proposal; its maximum
/// lets it grow to the proposal, up to the maximum and never below its content. A text that does not fit
/// shrinks to its minimum scale factor, then is cut. A container background fills the container to its edge
/// and its round corners. Nothing is clipped: what a view draws beyond its own size, or a view too large for
/// its container, shows as far as the image reaches, over a corner too. A content margin of at least 0.3 of
/// the corner radius (1 - √½) keeps a view that fits away from the corners.
Scene layout(const View& view, const ContainerShape& container, TextMeasurer& measurer);

}  // namespace ui
