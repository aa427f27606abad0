#pragma once

#include <cairo.h>

#include <vector>

#include "tarno/render/cairo_handle.hpp"
#include "tarno/render/shaped_text.hpp"

namespace render {

/// The mask of a text: how much of each pixel its outlines cover. Kept between drawings.
struct TextStamp {
  double scale = 1;  ///< pixels per unit
  double start = 0;  ///< where the text starts within its first pixel, from 0 to 1
  Surface coverage;  ///< null if the text has no outlines
  int left = 0;      ///< position of `coverage`, in pixels from the first pixel of the text
  int top = 0;
};

/// The masks of a text, the newest last: a tile can show the same text in several sizes.
using TextStamps = std::vector<TextStamp>;

/// Draws `text` at the shaping size in the source colour of `cairo`. The widest line starts at the origin of
/// user space, and the first baseline is on it. User space has equal scales and no rotation. On a raster
/// surface, baselines are rounded to whole pixels.
///
/// On raster surfaces, outlines are filled instead of drawing glyphs, because Cairo puts glyphs on whole
/// pixels only, which makes the spacing uneven at 11 or 12 points. Filling is slow, so the masks are kept.
/// Glyphs are drawn on vector surfaces, and on every surface if they are images (emoji).
///
/// Anything more than a quarter of a line above or below the lines is cut off.
void drawText(const ShapedText& text, TextStamps& stamps, cairo_t* cairo);

}  // namespace render
