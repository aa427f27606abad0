#pragma once

namespace desktop::wayland {

/// Width and height, of whole pixels or points.
struct Extent {
  int width = 0;
  int height = 0;

  friend bool operator==(const Extent&, const Extent&) = default;
};

/// The scale of an output that shows `pixels` as `points`, in pixels per point. Compositors make a whole
/// number of points of each side, this way or that; it is the simplest of the likely fractions that
/// lead to both.
double outputScale(Extent pixels, Extent points);

/// A picture on a surface.
struct Fit {
  Extent pixels;  ///< of the buffer, at least the picture's
  Extent points;  ///< of the surface
};

/// Where a picture of `pixels` at `pictureScale` pixels per point goes at its size in points, on an output
/// that has `outputScale` pixels to its own point; the picture that is wanted there has `wantedScale`.
///
/// A picture that has the wanted scale is shown pixel by pixel. A surface is a whole number of points, which
/// at a fractional scale may end within a pixel: the buffer then grows until both numbers are whole.
/// Compositors put both edges on the next pixel, so that such a surface is sharp wherever it stands.
Fit fit(Extent pixels, double pictureScale, double wantedScale, double outputScale);

}  // namespace desktop::wayland
