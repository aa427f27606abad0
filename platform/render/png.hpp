#pragma once

#include <cstdint>
#include <string>

#include "tarno/render/image.hpp"

namespace render {

/// Returns `pixel` (0xAARRGGBB) with its colour divided by its alpha.
std::uint32_t unpremultiplied(std::uint32_t pixel);

/// Returns a PNG file of `pixels`, premultiplied 0xAARRGGBB in rows without gaps: RGBA, 8 bits per channel,
/// sRGB, with a resolution of `dotsPerInch`. Throws std::bad_alloc.
std::string encodePng(const std::uint32_t* pixels, PixelSize size, double dotsPerInch);

}  // namespace render
