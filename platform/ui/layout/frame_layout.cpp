#include "tarno/ui/layout/frame_layout.hpp"

#include <algorithm>
#include <array>

#include "tarno/ui/layout/sizing.hpp"

namespace ui {
namespace {

struct FrameAxis {
  Axis axis;
  std::optional<double> fixed;
  std::optional<double> maximum;

  std::optional<double> offer(const ProposedSize& proposal) const {
    const auto& proposed = proposal.*axis.offer;
    if (fixed) return fixed;
    return proposed && maximum ? std::min(*proposed, *maximum) : proposed;
  }

  bool needsLimit(const FrameLayout& result) const {
    return maximum && !(result.offer.*axis.offer) && result.content.*axis.length > *maximum;
  }

  /// Of the frame.
  double length(const FrameLayout& result, const ProposedSize& proposal) const {
    if (fixed) return *fixed;
    const double content = result.content.*axis.length;
    return maximum && proposal.*axis.offer ? std::max(content, *(result.offer.*axis.offer)) : content;
  }
};

std::array<FrameAxis, 2> axesOf(const FrameOptions& options) {
  return {
      {{horizontalAxis, options.width, options.maxWidth}, {verticalAxis, options.height, options.maxHeight}}};
}

}  // namespace

std::optional<Size> fixedSize(const nodes::Frame& frame) {
  const auto [horizontal, vertical] = axesOf(frame.options);
  if (!horizontal.fixed || !vertical.fixed) return std::nullopt;
  return Size{*horizontal.fixed, *vertical.fixed};
}

FrameLayout layoutFrame(const nodes::Frame& frame, const Environment& environment,
                        const ProposedSize& proposal, LayoutPass& pass) {
  const auto axes = axesOf(frame.options);
  FrameLayout result;
  const auto measure = [&] { result.content = sizeThatFits(frame.content, environment, result.offer, pass); };
  for (const FrameAxis& along : axes) result.offer.*along.axis.offer = along.offer(proposal);
  measure();
  for (const FrameAxis& along : axes) {
    if (!along.needsLimit(result)) continue;
    result.offer.*along.axis.offer = along.maximum;
    measure();
  }
  for (const FrameAxis& along : axes) result.size.*along.axis.length = along.length(result, proposal);
  return result;
}

}  // namespace ui
