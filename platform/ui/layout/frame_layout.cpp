#include "ui/layout/frame_layout.hpp"

#include <algorithm>
#include <array>
#include <cmath>

#include "ui/axis.hpp"
#include "ui/layout/sizing.hpp"

namespace ui {
namespace {

struct FrameAxis {
  Axis axis;
  std::optional<double> fixed;
  std::optional<double> maximum;

  FrameAxis(Axis along, std::optional<double> length, std::optional<double> limit) : axis(along) {
    if (length && std::isfinite(*length) && *length >= 0)
      fixed = length;
    else if (limit && *limit >= 0)
      maximum = limit;
  }

  std::optional<double> offer(const ProposedSize& proposal) const {
    const auto& proposed = proposal.*axis.offer;
    if (fixed) return fixed;
    return proposed && maximum ? std::min(*proposed, *maximum) : proposed;
  }

  bool needsLimit(const FrameFit& fit) const {
    return maximum && !(fit.offer.*axis.offer) && fit.content.*axis.length > *maximum;
  }

  /// Of the frame.
  double length(const FrameFit& fit, const ProposedSize& proposal) const {
    if (fixed) return *fixed;
    const double content = fit.content.*axis.length;
    return maximum && proposal.*axis.offer ? std::max(content, *(fit.offer.*axis.offer)) : content;
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

FrameFit fitFrame(const nodes::Frame& frame, const Environment& environment, const ProposedSize& proposal,
                  LayoutPass& pass) {
  const auto axes = axesOf(frame.options);
  FrameFit fit;
  const auto measure = [&] { fit.content = sizeThatFits(frame.content, environment, fit.offer, pass); };
  for (const FrameAxis& along : axes) fit.offer.*along.axis.offer = along.offer(proposal);
  measure();
  for (const FrameAxis& along : axes) {
    if (!along.needsLimit(fit)) continue;
    fit.offer.*along.axis.offer = along.maximum;
    measure();
  }
  for (const FrameAxis& along : axes) fit.size.*along.axis.length = along.length(fit, proposal);
  return fit;
}

}  // namespace ui
