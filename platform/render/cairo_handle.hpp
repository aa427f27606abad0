#pragma once

#include <cairo.h>

#include "render/handle.hpp"

namespace render {

using Surface = Handle<cairo_surface_t, cairo_surface_destroy>;
using Context = Handle<cairo_t, cairo_destroy>;

}  // namespace render
