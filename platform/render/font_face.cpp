#include "tarno/render/font_face.hpp"

#include <hb.h>

#include <algorithm>
#include <array>
#include <string>

namespace render {
namespace {

struct Face {
  const char* family;
  PangoWeight weight;
  double sampleWidth = 0;  ///< the width of `sample` in Debian's Quicksand, in points at the shaping size
};

/// The two texts of the widget that have the least spare space.
constexpr const char* sample = "Status stale, Presence quiet";

/// Indexed by weight, from regular to bold.
using Faces = std::array<Face, 4>;

constexpr Faces standardFaces{{{"sans-serif", PANGO_WEIGHT_NORMAL},
                               {"sans-serif", PANGO_WEIGHT_MEDIUM},
                               {"sans-serif", PANGO_WEIGHT_SEMIBOLD},
                               {"sans-serif", PANGO_WEIGHT_BOLD}}};

/// In Debian's Quicksand, the medium weight has a family of its own; for the medium weight of "Quicksand",
/// fontconfig returns regular. There is no semibold. Bold replaces it, because medium does not look
/// emphasised beside regular text.
constexpr Faces roundedFaces{{{roundedFamily, PANGO_WEIGHT_NORMAL, 401.5},
                              {"Quicksand Medium", PANGO_WEIGHT_MEDIUM, 416.6},
                              {roundedFamily, PANGO_WEIGHT_BOLD, 427.4},
                              {roundedFamily, PANGO_WEIGHT_BOLD, 427.4}}};

}  // namespace

FontDescription fontFace(const ui::Font& font) {
  const Faces& faces = font.fontDesign == ui::FontDesign::rounded ? roundedFaces : standardFaces;
  const Face& face = faces.at(static_cast<std::size_t>(font.fontWeight));
  FontDescription description(pango_font_description_new());
  pango_font_description_set_family_static(description.get(), face.family);
  pango_font_description_set_weight(description.get(), face.weight);
  pango_font_description_set_absolute_size(description.get(), shapingSize * PANGO_SCALE);
  return description;
}

FontDescription fontFaceAmongAll(const ui::Font& font) {
  FontDescription description = fontFace(font);
  const std::string families =
      std::string(pango_font_description_get_family(description.get())) + ",sans-serif";
  pango_font_description_set_family(description.get(), families.c_str());
  // If bold is requested from a font without bold (Japanese), fontconfig thickens its strokes, which fills
  // the gaps between them at 11 points. If semibold is requested, it does not, and still returns bold fonts
  // where they exist.
  if (pango_font_description_get_weight(description.get()) == PANGO_WEIGHT_BOLD)
    pango_font_description_set_weight(description.get(), PANGO_WEIGHT_SEMIBOLD);
  return description;
}

const char* familiesOfScript(GUnicodeScript script) {
  switch (script) {
    case G_UNICODE_SCRIPT_LATIN:
    case G_UNICODE_SCRIPT_COMMON:
    case G_UNICODE_SCRIPT_INHERITED:
    case G_UNICODE_SCRIPT_UNKNOWN: return nullptr;
    // By default, fontconfig prefers a font that is heavier and wider.
    case G_UNICODE_SCRIPT_ARABIC: return "Noto Sans Arabic,sans-serif";
    default: return "sans-serif";
  }
}

double standInScale(const ui::Font& font, PangoContext* context, const FontDescription& face) {
  const tarno::Handle<PangoLayout, g_object_unref> layout(pango_layout_new(context));
  pango_layout_set_font_description(layout.get(), face.get());
  pango_layout_set_text(layout.get(), sample, -1);
  int width = 0;
  pango_layout_get_size(layout.get(), &width, nullptr);
  const double wanted = roundedFaces.at(static_cast<std::size_t>(font.fontWeight)).sampleWidth;
  return width > 0 ? std::min(1.0, wanted / pango_units_to_double(width)) : 1;
}

LineExtent lineExtent(const ui::Font& font, PangoContext* context, const FontDescription& face) {
  if (font.fontDesign == ui::FontDesign::rounded) return {shapingSize, shapingSize / 4};
  const tarno::Handle<PangoFont, g_object_unref> loaded(pango_context_load_font(context, face.get()));
  hb_font_extents_t extents{};
  if (loaded) hb_font_get_h_extents(pango_font_get_hb_font(loaded.get()), &extents);
  return {pango_units_to_double(extents.ascender), -pango_units_to_double(extents.descender)};
}

}  // namespace render
