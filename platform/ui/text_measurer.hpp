#pragma once

#include <optional>
#include <string_view>

#include "tarno/ui/font.hpp"
#include "tarno/ui/geometry.hpp"

namespace ui {

/// The size of a text.
struct TextMetrics {
  Size size;               ///< of all lines; never wider than the given width
  double baseline = 0;     ///< of the first line, from the top of the box
  bool truncated = false;  ///< cut with an ellipsis because it did not fit
  double drawnScale = 1;   ///< the factor from the size of the font to the size that is drawn
};

/// Measures text for the layout. Implementations say which threads may call them.
class TextMeasurer {
 public:
  virtual ~TextMeasurer() = default;

  /// Measures `text`, which is UTF-8, in `font`. The text is broken into lines no wider than `width` points;
  /// without `width`, only at its own line breaks. A text with more than `maxLines` lines, at least 1, is cut
  /// and ends with an ellipsis. If `maxLines` is 1, line breaks in the text count as blanks. An empty text
  /// has width 0 and the height of one line.
  virtual TextMetrics measure(std::string_view text, const Font& font, std::optional<double> width,
                              int maxLines) = 0;
};

}  // namespace ui
