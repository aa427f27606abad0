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

/// Sets `text` within `width` (infinite: as wide as it likes), in the environment's font and line
/// limit. Where not all of it fits it shrinks, to the largest scale at which it does but not below the
/// minimum scale factor; what does not fit even then is cut at that factor. Heights are not limited.
///
/// A width that falls short of the text's own by no more than rounding errors counts as enough; the metrics
/// are then the text's own. A font without a size takes no room.
FittedText fitText(std::string_view text, const Environment& environment, double width,
                   TextMeasurer& measurer);

}  // namespace ui
