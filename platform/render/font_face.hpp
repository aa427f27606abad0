#pragma once

#include <pango/pango.h>

#include "tarno/foundation/handle.hpp"
#include "tarno/ui/font.hpp"

namespace render {

using FontDescription = tarno::Handle<PangoFontDescription, pango_font_description_free>;

/// Every text is shaped at this size, in points, and scaled from there to the size of its font: unhinted
/// glyphs and their distances grow evenly, and each size that Pango hears of costs a search through all
/// fonts.
inline constexpr double shapingSize = 32;

/// The family of the rounded design.
inline constexpr const char* roundedFamily = "Quicksand";

/// The face that `font` is set in, at the shaping size.
FontDescription fontFace(const ui::Font& font);

/// The same for a text that needs other faces too: a plain one stands in where the face is missing.
FontDescription fontFaceAmongAll(const ui::Font& font);

/// The families that a run in `script` is set in, or null where that is the font's own.
const char* familiesOfScript(GUnicodeScript script);

/// What a line takes up above and below its baseline, in points at the shaping size.
struct LineExtent {
  double ascent = 0;
  double descent = 0;
};

/// Returns what a font of the rounded design is multiplied with where `face` stands in for the missing
/// rounded face, at most 1: the widget's own texts are then no wider than in that face, and need not be cut.
double standInScale(const ui::Font& font, PangoContext* context, const FontDescription& face);

/// `face` is that of `font` in `context`. In the rounded design, lines are as high as the rounded face makes
/// them also where it is missing, so that a layout stays as it is.
LineExtent lineExtent(const ui::Font& font, PangoContext* context, const FontDescription& face);

}  // namespace render
