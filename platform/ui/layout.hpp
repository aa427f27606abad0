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
/// In short, a parent offers a size, the child answers with the size that it takes, and the parent places it.
///
/// - A stack subtracts its spacing from the offer. It asks its children from the least to the most
///   flexible, and offers each of them an equal share of the length that is left.
/// - A frame offers its fixed lengths to its content and takes them itself. With a maximum it takes the
///   offered length, but no more than the maximum and no less than its content.
/// - A text that does not fit shrinks, down to its minimum scale factor. If it still does not fit, it is cut.
/// - A container background fills the whole container up to its round corners.
/// - Nothing is clipped. A view that is too large, or draws beyond its own size, is visible up to the
///   edges of the image, even across a round corner. A content margin of at least 0.3 of the corner radius
///   (1 - √½) keeps a view that fits away from the corners.
Scene layout(const View& view, const ContainerShape& container, TextMeasurer& measurer);

}  // namespace ui
