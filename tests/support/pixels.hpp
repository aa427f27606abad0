#pragma once

#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

/// A decoded picture; pixels are red, green, blue and alpha, not multiplied.
struct Pixels {
  using Pixel = std::array<std::uint8_t, 4>;

  int width = 0;
  int height = 0;
  std::vector<Pixel> rows;

  /// Throws std::runtime_error when `png` is no PNG file.
  static Pixels decode(std::string_view png);

  Pixel at(int x, int y) const { return rows.at(static_cast<std::size_t>(y * width + x)); }
};
