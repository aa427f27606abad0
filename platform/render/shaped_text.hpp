#pragma once

#include <pango/pango.h>

#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "tarno/render/display_text.hpp"
#include "tarno/render/font_contexts.hpp"
#include "tarno/render/font_face.hpp"
#include "tarno/ui/text_measurer.hpp"

namespace render {

/// The width of a text without a width limit. Widths are in Pango units, 1/1024 point.
inline constexpr int unlimited = std::numeric_limits<int>::max();

/// A text broken into lines of positioned glyphs. All lengths are at the shaping size, so that one object
/// serves every size of its font.
///
/// The line height is that of the font itself, even if the text also needs other fonts, so that nothing moves
/// when the script of a text changes. Taller scripts extend beyond the line, within the limits of drawText().
class ShapedText {
 public:
  /// Breaks `text` into at most `maxLines` lines in `face`, no wider than `width` units if possible.
  ShapedText(PangoContext* context, const FontDescription& face, const LineExtent& extent,
             const DisplayText& text, int width, int maxLines);

  /// Returns the size of the text. Its width is that of the widest line, which may exceed the requested
  /// width.
  const ui::TextMetrics& metrics() const { return metrics_; }

  // Return the smallest and the largest width, in Pango units, that give the same lines.
  int narrowest() const { return narrowest_; }
  int widest() const { return widest_; }

  struct Line {
    PangoLayoutLine* glyphs;  ///< owned by this object
    double x;                 ///< from the left edge of the widest line, in points
  };
  const std::vector<Line>& lines() const { return lines_; }
  double lineHeight() const { return lineHeight_; }

  bool rightToLeft() const { return rightToLeft_; }

 private:
  void setText(std::string_view text);
  bool cutBetweenLines(std::string_view text, int maxLines);
  void placeLines();

  ObjectHandle<PangoLayout> layout_;
  std::vector<Line> lines_;
  ui::TextMetrics metrics_;
  double lineHeight_ = 0;
  int narrowest_ = 0;
  int widest_ = unlimited;
  bool rightToLeft_ = false;
};

}  // namespace render
