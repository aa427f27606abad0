#pragma once

#include <pango/pango.h>

#include "render/handle.hpp"
#include "ui/font.hpp"

namespace render {

using FontDescription = Handle<PangoFontDescription, pango_font_description_free>;

/// Every text is shaped at this size, in points, and scaled from there to the size of its font: unhinted
/// glyphs and their distances grow evenly, and each size that Pango hears of costs a search through all
/// fonts.
inline constexpr double shapingSize = 32;

/// The face that `font` is set in, at the shaping size.
FontDescription fontFace(const ui::Font& font);

/// The same, with a say in which faces stand in for it. Costs Pango another search.
FontDescription fontFaceWithFallback(const ui::Font& font);

}  // namespace render
