#pragma once

#include "tarno/ui/layout/environment.hpp"
#include "tarno/ui/layout/layout_pass.hpp"

namespace ui {

struct FrameLayout {
  Size offer;    ///< what the frame offers to its content
  Size content;  ///< what the content takes; it may be larger than the frame
  Size size;     ///< the size of the frame
};

/// Returns the size of a frame whose width and height are both fixed, so that its content does not matter;
/// nothing for other frames.
std::optional<Size> fixedSize(const nodes::Frame& frame);

/// Sizes a frame and its content. Each axis follows one of these rules:
///
/// - Fixed length: the frame takes it and offers it to its content. A maximum is ignored.
/// - Maximum: the frame offers the smaller of the maximum and the proposal to its content. It takes
///   that length, or the length of its content if that is longer.
/// - Neither: the frame passes the proposal on to its content and takes what the content takes.
FrameLayout layoutFrame(const nodes::Frame& frame, const Environment& environment, const Size& proposal,
                        LayoutPass& pass);

}  // namespace ui
