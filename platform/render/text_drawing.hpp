#pragma once

#include <cairo.h>

#include <vector>

#include "tarno/render/cairo_handle.hpp"
#include "tarno/render/shaped_text.hpp"

namespace render {

/// The coverage of a text's outlines on a raster surface, kept from one drawing to the next.
struct TextStamp {
  double scale = 1;  ///< pixels to the unit that it was made for
  double start = 0;  ///< where in a pixel the text starts, from 0 to 1
  Surface coverage;  ///< nothing when the text has no outlines
  int left = 0;      ///< of `coverage`, in pixels from the whole pixel that the text starts in
  int top = 0;
};

/// The stamps of a text, the newest last: a text may stand on a tile in more than one size.
using TextStamps = std::vector<TextStamp>;

/// Draws `text`, at the shaping size, in the source colour of `cairo`, with its widest line starting at the
/// origin of user space and its first baseline on it. User space is scaled alike both ways and not turned. On
/// a raster surface, baselines move to the nearest whole pixel.
///
/// There, text is filled as outlines: Cairo's glyphs stand on whole pixels only, and at 11 or 12 points their
/// spacing would jump from letter to letter. Outlines are slow to fill, hence the stamps. Vector surfaces get
/// text as glyphs, and so does every surface where the glyphs are pictures (emoji).
///
/// What reaches higher or deeper than the lines and a quarter of a line more is cut off.
void drawText(const ShapedText& text, TextStamps& stamps, cairo_t* cairo);

}  // namespace render
