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

  /// `text` set in `font`, broken into lines no wider than `width` points (one line per paragraph when
  /// absent) and cut with an ellipsis at the end of line `maxLines` where more would follow. With one line,
  /// line breaks in the text count as blanks. An empty text has width 0 and the height of one line. `text` is
  /// UTF-8; `maxLines` is at least 1.
  virtual TextMetrics measure(std::string_view text, const Font& font, std::optional<double> width,
                              int maxLines) = 0;
};

}  // namespace ui
