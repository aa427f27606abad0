#pragma once

#include <cstdint>
#include <string>

namespace render {

/// Pixels in rows from the top, each 0xAARRGGBB in the machine's byte order and multiplied by alpha: what a
/// Cairo image surface of format ARGB32 holds.
struct PixelView {
  const unsigned char* data;
  int width;
  int height;
  int stride;  ///< bytes from one row to the next
};

/// The bytes of a PNG file of `pixels`: RGBA, 8 bits a channel, not multiplied by alpha, sRGB, at
/// `dotsPerInch`. Throws ImageError.
std::string encodePng(const PixelView& pixels, double dotsPerInch);

}  // namespace render
