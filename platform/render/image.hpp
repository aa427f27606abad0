#pragma once

#include <stdexcept>
#include <string>

#include "render/text_engine.hpp"
#include "ui/scene.hpp"

namespace render {

enum class ImageFormat { png, svg, pdf };

/// An image that cannot be made: too large, or out of memory. what() is one line.
class ImageError : public std::runtime_error {
 public:
  using runtime_error::runtime_error;
};

/// The largest side of a PNG, in pixels.
inline constexpr int largestImageSide = 16384;

/// The bytes of an image file that shows `scene` on a transparent ground. A point is `scale` pixels of a PNG
/// (rounded up to whole pixels at the right and bottom edge), `scale` user units of an SVG and `scale` points
/// of a PDF; `scale` is finite and above 0. The same scene gives the same bytes. Throws ImageError.
std::string encodeImage(const ui::Scene& scene, TextEngine& text, ImageFormat format, double scale);

}  // namespace render
