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

/// Lengths in Pango's unit, 1/1024 point.
inline constexpr int unlimited = std::numeric_limits<int>::max();

/// A text broken into lines, each a run of placed glyphs. All its lengths are those at the shaping size; it
/// serves a font of any size.
///
/// Lines are as high as the font's own face makes them, whatever faces stand in for characters that it lacks,
/// so that what surrounds a text stays put when the text changes its script. A script that reaches higher or
/// deeper than that is drawn beyond the line, up to what drawText() allows.
class ShapedText {
 public:
  /// At most `maxLines` lines of `text` in `face`, no wider than `width` units where that is possible.
  ShapedText(PangoContext* context, const FontDescription& face, const LineExtent& extent,
             const DisplayText& text, int width, int maxLines);

  /// The width is that of the widest line, even where that is more than the one asked for.
  const ui::TextMetrics& metrics() const { return metrics_; }

  /// The widths, in units, for which shaping would give these same lines again.
  int narrowest() const { return narrowest_; }
  int widest() const { return widest_; }

  struct Line {
    PangoLayoutLine* glyphs;  ///< owned by the text
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
