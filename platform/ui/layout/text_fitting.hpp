#pragma once

#include <string_view>

#include "tarno/ui/layout/environment.hpp"
#include "tarno/ui/text_measurer.hpp"

namespace ui {

/// A fitted text: its font after shrinking, and its metrics in that font.
struct FittedText {
  Font font;
  TextMetrics metrics;
};

/// Fits `text` into `width` points, which may be infinite, with the font and line limit of `environment`. If
/// it does not fit, it shrinks to the largest scale at which it fits, but not below the minimum scale factor.
/// If it does not fit at the minimum either, it is cut there. The height is not limited.
///
/// A text that is too wide only by a rounding error counts as fitting, and the metrics have its full width. A
/// text whose font has the size 0 takes no space.
FittedText fitText(std::string_view text, const Environment& environment, double width,
                   TextMeasurer& measurer);

}  // namespace ui
