#pragma once

#include <pango/pango.h>

#include "tarno/foundation/handle.hpp"
#include "tarno/ui/font.hpp"

namespace render {

using FontDescription = tarno::Handle<PangoFontDescription, pango_font_description_free>;

/// The size, in points, at which every text is shaped. It is then scaled to the size of its font: glyphs
/// without hinting scale evenly, and each additional size would cost Pango a search through all fonts.
inline constexpr double shapingSize = 32;

/// The family of the rounded design.
inline constexpr const char* roundedFamily = "Quicksand";

/// Returns the description of `font` at the shaping size.
FontDescription fontFace(const ui::Font& font);

/// The same for a text that also needs other fonts: the sans-serif font replaces a missing family.
FontDescription fontFaceAmongAll(const ui::Font& font);

/// Returns the families for a run in `script`, or null for the family of the font itself.
const char* familiesOfScript(GUnicodeScript script);

/// The height of a line above and below its baseline, in points at the shaping size.
struct LineExtent {
  double ascent = 0;
  double descent = 0;
};

/// Returns the factor for a font of the rounded design when `face` replaces the missing Quicksand, at most 1.
/// It makes the widget's own texts no wider than in Quicksand, so that they are not cut.
double standInScale(const ui::Font& font, PangoContext* context, const FontDescription& face);

/// Returns the extent of a line of `font`, whose description in `context` is `face`. The rounded design
/// always has the line height of Quicksand, even if that is missing, so that the layout stays the same.
LineExtent lineExtent(const ui::Font& font, PangoContext* context, const FontDescription& face);

}  // namespace render
