#include "wayland/scale.hpp"

#include <algorithm>
#include <cmath>
#include <optional>

namespace desktop::wayland {
namespace {

/// wp_fractional_scale_v1 counts in these parts of a pixel.
constexpr int finestParts = 120;

constexpr double tolerance = 0.01;  // pixels

struct Side {
  int pixels = 0;
  int points = 0;
};

/// The shortest side of `pixels` or more that is a whole number of pixels and of points.
std::optional<Side> wholeSide(int pixels, double scale) {
  const int first = static_cast<int>(std::ceil((pixels - tolerance) / scale));
  for (int points = first; points <= first + finestParts; ++points) {
    const double exact = points * scale;
    if (std::abs(exact - std::round(exact)) < tolerance)
      return Side{static_cast<int>(std::lround(exact)), points};
  }
  return std::nullopt;
}

}  // namespace

double outputScale(Extent pixels, Extent points) {
  const double ratio = static_cast<double>(pixels.width + pixels.height) / (points.width + points.height);
  for (int parts = 1; parts <= finestParts; ++parts) {
    if (finestParts % parts != 0 && 100 % parts != 0) continue;  // as the protocol counts, and as people do
    const double scale = std::round(ratio * parts) / parts;
    if (std::abs(pixels.width / scale - points.width) < 1 &&
        std::abs(pixels.height / scale - points.height) < 1)
      return scale;
  }
  return ratio;
}

Fit fit(Extent pixels, double pictureScale, double wantedScale, double outputScale) {
  const double scale =
      outputScale * pictureScale / wantedScale;  // pixels of this picture to an output's point
  if (std::abs(pictureScale - wantedScale) < tolerance) {
    const auto width = wholeSide(pixels.width, scale), height = wholeSide(pixels.height, scale);
    if (width && height) return {{width->pixels, height->pixels}, {width->points, height->points}};
  }
  const auto points = [&](int side) { return std::max(1, static_cast<int>(std::lround(side / scale))); };
  return {pixels, {points(pixels.width), points(pixels.height)}};
}

}  // namespace desktop::wayland
