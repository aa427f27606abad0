#pragma once

#include <cairo.h>

#include "tarno/foundation/handle.hpp"
#include "tarno/ui/color.hpp"

namespace render {

using Surface = tarno::Handle<cairo_surface_t, cairo_surface_destroy>;
using Context = tarno::Handle<cairo_t, cairo_destroy>;

/// Sets the source colour. Rounds each component as ui::byteOf() does, because Cairo itself would truncate
/// it.
inline void setColor(cairo_t* cairo, const ui::Color& color) {
  const auto step = [](double component) { return static_cast<double>(ui::byteOf(component)) / 255; };
  cairo_set_source_rgba(cairo, step(color.red), step(color.green), step(color.blue), step(color.alpha));
}

/// Returns whether `cairo` draws into a vector file.
inline bool isVector(cairo_t* cairo) {
  const cairo_surface_type_t type = cairo_surface_get_type(cairo_get_group_target(cairo));
  return type == CAIRO_SURFACE_TYPE_PDF || type == CAIRO_SURFACE_TYPE_SVG ||
         type == CAIRO_SURFACE_TYPE_RECORDING;
}

}  // namespace render
