#pragma once

#include <cstdint>
#include <vector>

#include "tarno-desktop/picture.hpp"
#include "tarno-desktop/placement.hpp"

namespace desktop::x11 {

/// The pixels of a picture as a window shows them: at the window's size, and without transparency where
/// nothing composes windows.
class Pixels {
 public:
  /// `picture` outlives it. `width` and `height` are the window's; a picture of another size is stretched.
  Pixels(const Picture& picture, int width, int height, bool isOpaque);

  /// The rows from `y` on, at most `rows` of them.
  std::vector<std::uint32_t> strip(int y, int rows) const;

  /// What is more than half opaque, from top to bottom; equal rows that follow each other are one area.
  std::vector<Area> outline() const;

 private:
  std::uint32_t pixel(int x, int y) const;

  const Picture& picture_;
  MappedPicture mapped_;
  int width_, height_;
  bool isOpaque_;
};

}  // namespace desktop::x11
