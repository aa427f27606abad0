#pragma once

#include "tarno/render/text_engine.hpp"
#include "tarno/ui/scene.hpp"

namespace render {

/// Draws `scene` on `cairo`, whose user space is in points, scaled alike both ways and not turned, with the
/// scene's corner at the origin; what the scene does not cover is left as it was. The state of `cairo` is the
/// same afterwards.
void paint(const ui::Scene& scene, TextEngine& text, cairo_t* cairo);

}  // namespace render
