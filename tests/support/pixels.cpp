#include "support/pixels.hpp"

#include <png.h>

#include <stdexcept>

Pixels Pixels::decode(std::string_view png) {
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
