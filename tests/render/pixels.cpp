#include "render/pixels.hpp"

#include <png.h>

#include <stdexcept>

Pixels Pixels::decode(std::string_view png) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  if (!png_image_begin_read_from_memory(&image, png.data(), png.size()))
    throw std::runtime_error(image.message);
  image.format = PNG_FORMAT_RGBA;
  Pixels pixels{static_cast<int>(image.width), static_cast<int>(image.height), {}};
  pixels.rows.resize(std::size_t{image.width} * image.height);
  if (!png_image_finish_read(&image, nullptr, pixels.rows.data(), 0, nullptr))
    throw std::runtime_error(image.message);
  return pixels;
}

std::string Pixels::encode() const {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = static_cast<png_uint_32>(width);
  image.height = static_cast<png_uint_32>(height);
  image.format = PNG_FORMAT_RGBA;
  png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
  std::string file(size, '\0');
  if (!png_image_write_to_memory(&image, file.data(), &size, 0, rows.data(), 0, nullptr))
    throw std::runtime_error(image.message);
  file.resize(size);
  return file;
}
