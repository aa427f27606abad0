#include "render/png.hpp"

#include <png.h>

#include <array>
#include <cmath>
#include <csetjmp>
#include <cstring>
#include <vector>

#include "render/image.hpp"

namespace render {
namespace {

/// What libpng works on. It reports errors by a jump, so that nothing between setjmp() and the jump may need
/// destruction: all of it lives here.
struct Writing {
  PixelView pixels;
  std::string file;
  std::vector<png_byte> row;
  std::string error;
};

extern "C" {

void rememberError(png_structp png, png_const_charp message) {
  try {
    static_cast<Writing*>(png_get_error_ptr(png))->error = message;
  } catch (...) {
  }
  png_longjmp(png, 1);
}

void ignoreWarning(png_structp, png_const_charp) {}

void append(png_structp png, png_bytep data, png_size_t size) {
  bool appended = true;
  try {
    static_cast<Writing*>(png_get_io_ptr(png))->file.append(reinterpret_cast<const char*>(data), size);
  } catch (...) {
    appended = false;
  }
  if (!appended) png_error(png, "out of memory");
}

void flushNothing(png_structp) {}

}  // extern "C"

png_byte unpremultiplied(std::uint32_t pixel, int shift) {
  const std::uint32_t value = (pixel >> shift) & 0xFF;
  const std::uint32_t alpha = pixel >> 24;
  return static_cast<png_byte>(alpha == 0 ? 0 : (value * 0xFF + alpha / 2) / alpha);
}

/// Writes the pixels of a row as RGBA, not multiplied by alpha. Most pixels look like the one before.
void convert(const unsigned char* source, int width, png_byte* target) {
  std::uint32_t last = 0;
  std::array<png_byte, 4> rgba{};
  for (int x = 0; x < width; ++x, source += 4, target += 4) {
    std::uint32_t pixel;
    std::memcpy(&pixel, source, sizeof pixel);
    if (pixel != last)
      rgba = {unpremultiplied(pixel, 16), unpremultiplied(pixel, 8), unpremultiplied(pixel, 0),
              static_cast<png_byte>(pixel >> 24)};
    last = pixel;
    std::memcpy(target, rgba.data(), rgba.size());
  }
}

/// False on failure, with the reason in `writing.error`.
bool write(png_structp png, png_infop info, Writing& writing, png_uint_32 dotsPerMetre) {
  if (setjmp(png_jmpbuf(png))) return false;
  const PixelView& pixels = writing.pixels;
  png_set_write_fn(png, &writing, append, flushNothing);
  png_set_user_limits(png, largestImageSide, largestImageSide);
  // Large even areas with few colours: the fastest level without a filter makes files as small as the slow
  // ones do.
  png_set_compression_level(png, 1);
  png_set_filter(png, PNG_FILTER_TYPE_BASE, PNG_FILTER_NONE);
  png_set_IHDR(png, info, static_cast<png_uint_32>(pixels.width), static_cast<png_uint_32>(pixels.height), 8,
               PNG_COLOR_TYPE_RGBA, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
               PNG_FILTER_TYPE_DEFAULT);
  png_set_sRGB(png, info, PNG_sRGB_INTENT_PERCEPTUAL);
  png_set_pHYs(png, info, dotsPerMetre, dotsPerMetre, PNG_RESOLUTION_METER);
  png_write_info(png, info);
  const unsigned char* row = pixels.data;
  for (int y = 0; y < pixels.height; ++y, row += pixels.stride) {
    convert(row, pixels.width, writing.row.data());
    png_write_row(png, writing.row.data());
  }
  png_write_end(png, nullptr);
  return true;
}

}  // namespace

std::string encodePng(const PixelView& pixels, double dotsPerInch) {
  constexpr double inchesPerMetre = 1 / 0.0254;
  Writing writing{.pixels = pixels, .row = std::vector<png_byte>(static_cast<std::size_t>(pixels.width) * 4)};
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &writing, rememberError, ignoreWarning);
  png_infop info = png ? png_create_info_struct(png) : nullptr;
  const bool written =
      info && write(png, info, writing, static_cast<png_uint_32>(std::lround(dotsPerInch * inchesPerMetre)));
  png_destroy_write_struct(&png, &info);
  if (!written) throw ImageError("cannot encode the PNG: " + (info ? writing.error : "out of memory"));
  return std::move(writing.file);
}

}  // namespace render
