#pragma once

#include "tarno/render/text_engine.hpp"
#include "tarno/ui/scene.hpp"

namespace render {

/// Draws `scene` on `cairo`, whose user space is in points, with equal scales and no rotation, and with the
/// corner of the scene at the origin. Leaves pixels outside of the scene and the state of `cairo` unchanged.
void paint(const ui::Scene& scene, TextEngine& text, cairo_t* cairo);

}  // namespace render
