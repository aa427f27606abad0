#pragma once

#include <cstdint>
#include <string>

#include "tarno/render/image.hpp"

namespace render {

/// `pixel`, 0xAARRGGBB, with its colour no longer multiplied by its alpha.
std::uint32_t unpremultiplied(std::uint32_t pixel);

/// The bytes of a PNG file of `pixels`, premultiplied 0xAARRGGBB in rows without gaps: RGBA, 8 bits per
/// channel, sRGB, at `dotsPerInch`. Throws std::bad_alloc.
std::string encodePng(const std::uint32_t* pixels, PixelSize size, double dotsPerInch);

}  // namespace render
