#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

#include "tarno/render/text_engine.hpp"
#include "tarno/ui/scene.hpp"

namespace render {

enum class ImageFormat { png, svg, pdf };

/// Thrown for an image whose size is impossible. what() is one line.
class ImageError : public std::runtime_error {
 public:
  using runtime_error::runtime_error;
};

/// The maximum side of an image: pixels of a raster image, units of a vector file.
inline constexpr int largestImageSide = 16384;

struct PixelSize {
  int width = 0;
  int height = 0;

  friend bool operator==(const PixelSize&, const PixelSize&) = default;
};

/// Returns the size of `points` at `scale` pixels per point, in whole pixels, rounded up, at least 1 x 1. A
/// rounding error does not add a pixel. Throws ImageError if a side exceeds `largestImageSide` or an argument
/// is not finite.
PixelSize pixelSize(ui::Size points, double scale);

/// Draws `scene` over `pixels`: pixelSize(scene.size, scale) pixels in rows from the top, `strideBytes` (a
/// multiple of 4) from one row to the next, each 0xAARRGGBB in the machine's byte order and premultiplied by
/// alpha. The caller owns the memory and fills it beforehand; zeros are transparent. Throws ImageError before
/// it draws.
void drawPixels(const ui::Scene& scene, TextEngine& text, double scale, std::uint32_t* pixels,
                std::size_t strideBytes);

/// Returns an image file that shows `scene` on a transparent background. A PNG shows what drawPixels() draws.
/// One point is `scale` user units of an SVG and `scale` points of a PDF; in these, screen readers find
/// `title` and a description of the scene. The same scene gives the same bytes. Throws ImageError and
/// std::bad_alloc.
std::string encodeImage(const ui::Scene& scene, TextEngine& text, ImageFormat format, double scale,
                        std::string_view title = {});

}  // namespace render
