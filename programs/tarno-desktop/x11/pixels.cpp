#include "x11/pixels.hpp"

#include <algorithm>

namespace desktop::x11 {
namespace {

constexpr std::uint32_t opaque = 0xff;

std::uint32_t alpha(std::uint32_t pixel) { return pixel >> 24; }

/// Without the transparency, so that no black is seen where an edge is cut.
std::uint32_t unpremultiplied(std::uint32_t pixel) {
  if (alpha(pixel) == opaque || alpha(pixel) == 0) return pixel;
  std::uint32_t color = opaque << 24;
  for (const int shift : {0, 8, 16})
    color |= std::min(opaque, (pixel >> shift & 0xff) * opaque / alpha(pixel)) << shift;
  return color;
}

}  // namespace

Pixels::Pixels(const Picture& picture, int width, int height, bool isOpaque)
    : picture_(picture), mapped_(picture), width_(width), height_(height), isOpaque_(isOpaque) {}

std::uint32_t Pixels::pixel(int x, int y) const {
  return mapped_.row(y * picture_.height / height_)[static_cast<std::size_t>(x * picture_.width / width_)];
}

std::vector<std::uint32_t> Pixels::strip(int y, int rows) const {
  std::vector<std::uint32_t> pixels;
  const int end = std::min(y + rows, height_);
  pixels.reserve(static_cast<std::size_t>(end - y) * static_cast<std::size_t>(width_));
  for (; y < end; ++y)
    for (int x = 0; x < width_; ++x) pixels.push_back(isOpaque_ ? unpremultiplied(pixel(x, y)) : pixel(x, y));
  return pixels;
}

std::vector<Area> Pixels::outline() const {
  std::vector<Area> areas;
  for (int y = 0; y < height_; ++y) {
    for (int x = 0; x < width_; ++x) {
      const int start = x;
      while (x < width_ && alpha(pixel(x, y)) > opaque / 2) ++x;
      if (x == start) continue;
      if (areas.empty() || areas.back() != Area{start, areas.back().y, x - start, y - areas.back().y})
        areas.push_back({start, y, x - start, 0});
      ++areas.back().height;
    }
  }
  return areas;
}

}  // namespace desktop::x11
