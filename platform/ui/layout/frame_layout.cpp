#include "tarno/ui/layout/frame_layout.hpp"

#include <algorithm>
#include <array>

#include "tarno/ui/layout/sizing.hpp"

namespace ui {
namespace {

/// The options of a frame along one axis.
struct FrameAxis {
  double Size::*along;
  std::optional<double> fixed;
  std::optional<double> maximum;

  /// Returns the length that the frame offers to its content.
  double offer(const Size& proposal) const {
    return fixed.value_or(std::min(proposal.*along, maximum.value_or(infinity)));
  }

  /// Returns the length that the frame takes.
  double length(const FrameLayout& frame) const {
    if (fixed) return *fixed;
    return maximum ? std::max(frame.content.*along, frame.offer.*along) : frame.content.*along;
  }
};

std::array<FrameAxis, 2> axesOf(const FrameOptions& options) {
  return {
      {{&Size::width, options.width, options.maxWidth}, {&Size::height, options.height, options.maxHeight}}};
}

}  // namespace

std::optional<Size> fixedSize(const nodes::Frame& frame) {
  const auto [horizontal, vertical] = axesOf(frame.options);
  if (!horizontal.fixed || !vertical.fixed) return std::nullopt;
  return Size{*horizontal.fixed, *vertical.fixed};
}

FrameLayout layoutFrame(const nodes::Frame& frame, const Environment& environment, const Size& proposal,
                        LayoutPass& pass) {
  const auto axes = axesOf(frame.options);
  FrameLayout result;
  for (const FrameAxis& axis : axes) result.offer.*axis.along = axis.offer(proposal);
  result.content = sizeThatFits(frame.content, environment, result.offer, pass);
  for (const FrameAxis& axis : axes) result.size.*axis.along = axis.length(result);
  return result;
}

}  // namespace ui
