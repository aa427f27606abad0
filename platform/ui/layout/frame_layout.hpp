#pragma once

#include "tarno/ui/layout/environment.hpp"
#include "tarno/ui/layout/layout_pass.hpp"

namespace ui {

struct FrameLayout {
  Size offer;    ///< to the content
  Size content;  ///< the size of the content; it may be larger than the frame
  Size size;     ///< of the frame
};

/// Returns the size of a frame with two fixed lengths, which does not depend on its content.
std::optional<Size> fixedSize(const nodes::Frame& frame);

/// Sizes a frame and its content. Along each axis:
///
/// A fixed length is what the content is offered and what the frame measures; a maximum beside it says
/// nothing.
///
/// A maximum: the content is offered the smaller of it and the proposal; the frame takes that too, unless its
/// content is longer.
///
/// Neither: the frame passes the proposal on and measures what its content does.
FrameLayout layoutFrame(const nodes::Frame& frame, const Environment& environment, const Size& proposal,
                        LayoutPass& pass);

}  // namespace ui
