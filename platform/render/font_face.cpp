#include "render/font_face.hpp"

#include <array>
#include <string>

namespace render {
namespace {

struct Face {
  const char* family;
  PangoWeight weight;
};

/// By weight, from regular to bold.
using Faces = std::array<Face, 4>;

constexpr Faces standardFaces{{{"sans-serif", PANGO_WEIGHT_NORMAL},
                               {"sans-serif", PANGO_WEIGHT_MEDIUM},
                               {"sans-serif", PANGO_WEIGHT_SEMIBOLD},
                               {"sans-serif", PANGO_WEIGHT_BOLD}}};

/// Quicksand as Debian packages it keeps its medium weight in a family of its own: asked for the medium
/// weight of "Quicksand", fontconfig hands out regular. There is no semibold; text of that weight is set in
/// bold, since beside regular text, medium does not read as emphasised.
constexpr Faces roundedFaces{{{"Quicksand", PANGO_WEIGHT_NORMAL},
                              {"Quicksand Medium", PANGO_WEIGHT_MEDIUM},
                              {"Quicksand", PANGO_WEIGHT_BOLD},
                              {"Quicksand", PANGO_WEIGHT_BOLD}}};

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

FontDescription fontFaceWithFallback(const ui::Font& font) {
  FontDescription description = fontFace(font);
  // For Arabic, fontconfig prefers a face that is heavier and wider than ours.
  const std::string families =
      std::string(pango_font_description_get_family(description.get())) + ",Noto Sans Arabic";
  pango_font_description_set_family(description.get(), families.c_str());
  // From a request for bold on, fontconfig smears a face that has no bold (Japanese) into one, and at 11
  // points that closes the gaps between strokes. For semibold it hands out the same bold faces where there
  // are any.
  if (pango_font_description_get_weight(description.get()) == PANGO_WEIGHT_BOLD)
    pango_font_description_set_weight(description.get(), PANGO_WEIGHT_SEMIBOLD);
  return description;
}

}  // namespace render
