#pragma once

#include <algorithm>
#include <cmath>

namespace ui {

/// A colour in the sRGB space; components from 0 to 1, not multiplied by alpha.
struct Color {
  double red = 0;
  double green = 0;
  double blue = 0;
  double alpha = 1;  ///< its opacity

  static constexpr Color sRGB(double red, double green, double blue) { return {red, green, blue, 1}; }

  /// Returns the colour with its opacity multiplied by `factor`.
  constexpr Color opacity(double factor) const { return {red, green, blue, alpha * factor}; }

  friend bool operator==(const Color&, const Color&) = default;
};

/// Returns a component as a whole number from 0 to 255, rounded half up. Both drawing and `inspect` use it.
inline long byteOf(double component) {
  return component > 0 ? std::lround(std::min(component, 1.0) * 255) : 0;
}

inline constexpr Color white = Color::sRGB(1, 1, 1);
inline constexpr Color black = Color::sRGB(0, 0, 0);

}  // namespace ui
