#pragma once

#include <png.h>

#include <array>
#include <cstdint>
#include <stdexcept>
#include <string_view>
#include <vector>

/// A decoded picture. A pixel is red, green, blue and alpha, not premultiplied.
struct Pixels {
  using Pixel = std::array<std::uint8_t, 4>;

  int width = 0;
  int height = 0;
  std::vector<Pixel> rows;

  /// Decodes a PNG file. Throws std::runtime_error if `png` is not one.
  static Pixels decode(std::string_view png) {
    png_image image{.version = PNG_IMAGE_VERSION};
    if (!png_image_begin_read_from_memory(&image, png.data(), png.size()))
      throw std::runtime_error(image.message);
    image.format = PNG_FORMAT_RGBA;
    Pixels pixels{static_cast<int>(image.width), static_cast<int>(image.height), {}};
    pixels.rows.resize(std::size_t{image.width} * image.height);
    if (!png_image_finish_read(&image, nullptr, pixels.rows.data(), 0, nullptr))
      throw std::runtime_error(image.message);
    return pixels;
  }

  Pixel at(int x, int y) const { return rows.at(static_cast<std::size_t>(y * width + x)); }
};
