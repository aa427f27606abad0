#include "tarno/render/png.hpp"

#include <png.h>

#include <array>
#include <cmath>
#include <csetjmp>
#include <cstring>
#include <exception>
#include <new>
#include <vector>

#include "tarno/foundation/handle.hpp"

namespace render {
namespace {

/// The state of a PNG writer. Everything that must be destroyed is here, because libpng reports errors by
/// longjmp(), which runs no destructors.
struct PngWriter {
  const std::uint32_t* pixels;
  PixelSize size;
  png_uint_32 dotsPerMetre;
  std::vector<png_byte> row = std::vector<png_byte>(static_cast<std::size_t>(size.width) * 4);
  std::string file;
  std::exception_ptr failure;
  png_infop info = nullptr;

  static void destroy(png_struct* png) {
    png_destroy_write_struct(&png, &static_cast<PngWriter*>(png_get_error_ptr(png))->info);
  }
  tarno::Handle<png_struct, destroy> png{nullptr};  ///< owns `info`, too
};

void rememberError(png_structp png, png_const_charp message) {
  auto& writer = *static_cast<PngWriter*>(png_get_error_ptr(png));
  if (!writer.failure) writer.failure = std::make_exception_ptr(std::runtime_error(message));
  png_longjmp(png, 1);
}

void ignoreWarning(png_structp, png_const_charp) {}

void append(png_structp png, png_bytep data, png_size_t size) {
  auto& writer = *static_cast<PngWriter*>(png_get_io_ptr(png));
  try {
    writer.file.append(reinterpret_cast<const char*>(data), size);
  } catch (const std::bad_alloc&) {
    writer.failure = std::current_exception();
  }
  if (writer.failure) png_error(png, "out of memory");
}

void flushNothing(png_structp) {}

/// Writes `count` pixels as RGBA. Converts only changes, because most pixels equal the one before.
void convert(const std::uint32_t* pixels, int count, png_byte* target) {
  std::uint32_t last = 0;
  std::array<png_byte, 4> rgba{};
  for (const std::uint32_t* pixel = pixels; pixel != pixels + count; ++pixel, target += rgba.size()) {
    if (*pixel != last) {
      last = *pixel;
      const std::uint32_t straight = unpremultiplied(last);
      rgba = {static_cast<png_byte>(straight >> 16), static_cast<png_byte>(straight >> 8),
              static_cast<png_byte>(straight), static_cast<png_byte>(straight >> 24)};
    }
    std::memcpy(target, rgba.data(), rgba.size());
  }
}

/// Writes the file. Returns false if that fails; then `writer.failure` says why.
bool write(PngWriter& writer) {
  if (setjmp(png_jmpbuf(writer.png.get()))) return false;
  const png_structp png = writer.png.get();
  const png_infop info = writer.info;
  png_set_write_fn(png, &writer, append, flushNothing);
  png_set_user_limits(png, largestImageSide, largestImageSide);
  // Tiles have large areas with few colours: the fastest level without filters makes files as small as the
  // slow levels do.
  png_set_compression_level(png, 1);
  png_set_filter(png, PNG_FILTER_TYPE_BASE, PNG_FILTER_NONE);
  png_set_IHDR(png, info, static_cast<png_uint_32>(writer.size.width),
               static_cast<png_uint_32>(writer.size.height), 8, PNG_COLOR_TYPE_RGBA, PNG_INTERLACE_NONE,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  png_set_sRGB(png, info, PNG_sRGB_INTENT_PERCEPTUAL);
  png_set_pHYs(png, info, writer.dotsPerMetre, writer.dotsPerMetre, PNG_RESOLUTION_METER);
  png_write_info(png, info);
  const std::uint32_t* row = writer.pixels;
  for (int y = 0; y < writer.size.height; ++y, row += writer.size.width) {
    convert(row, writer.size.width, writer.row.data());
    png_write_row(png, writer.row.data());
  }
  png_write_end(png, nullptr);
  return true;
}

}  // namespace

std::uint32_t unpremultiplied(std::uint32_t pixel) {
  const std::uint32_t alpha = pixel >> 24;
  if (alpha == 0 || alpha == 0xFF) return alpha == 0 ? 0 : pixel;
  const auto channel = [&](int shift) {
    return ((pixel >> shift & 0xFF) * 0xFF + alpha / 2) / alpha << shift;
  };
  return alpha << 24 | channel(16) | channel(8) | channel(0);
}

std::string encodePng(const std::uint32_t* pixels, PixelSize size, double dotsPerInch) {
  constexpr double inchesPerMetre = 1 / 0.0254;
  PngWriter writer{pixels, size, static_cast<png_uint_32>(std::lround(dotsPerInch * inchesPerMetre))};
  writer.png.reset(png_create_write_struct(PNG_LIBPNG_VER_STRING, &writer, rememberError, ignoreWarning));
  writer.info = writer.png ? png_create_info_struct(writer.png.get()) : nullptr;
  if (!writer.info) throw std::bad_alloc();
  if (!write(writer)) std::rethrow_exception(writer.failure);
  return std::move(writer.file);
}

}  // namespace render
