#pragma once

#include <pango/pango.h>

#include "tarno/foundation/handle.hpp"
#include "tarno/ui/font.hpp"

namespace render {

using FontDescription = tarno::Handle<PangoFontDescription, pango_font_description_free>;

/// The size, in points, at which every text is shaped. The result is then scaled to the size of the font,
/// which glyphs without hinting allow. Pango would search through all fonts for each additional size.
inline constexpr double shapingSize = 32;

/// The family of the rounded design.
inline constexpr const char* roundedFamily = "Quicksand";

/// Returns the description of `font` at the shaping size.
FontDescription fontFace(const ui::Font& font);

/// Does the same for a text that also needs other fonts. If the family is missing, sans-serif replaces it.
FontDescription fontFaceAmongAll(const ui::Font& font);

/// Returns the font families, separated by commas, for a run in `script`; null if the font itself will do.
const char* familiesOfScript(GUnicodeScript script);

/// The height of a line above and below its baseline, in points at the shaping size.
struct LineExtent {
  double ascent = 0;
  double descent = 0;
};

/// Returns the factor, at most 1, by which a font of the rounded design is reduced when `face` replaces the
/// missing Quicksand. With it, the widget's own texts are no wider than in Quicksand, so that they are not
/// cut.
double standInScale(const ui::Font& font, PangoContext* context, const FontDescription& face);

/// Returns the extent of a line of `font`, whose description in `context` is `face`. The rounded design
/// always has the line height of Quicksand, even if that is missing, so that the layout stays the same.
LineExtent lineExtent(const ui::Font& font, PangoContext* context, const FontDescription& face);

}  // namespace render
