#include "tarno/ui/layout/text_fitting.hpp"

#include <cmath>

namespace ui {
namespace {

/// A text still fits if its width exceeds the space by this, in points. Rounding errors of the layout may
/// make the space slightly too small, and text renderers round widths to steps of about half this size.
constexpr double widthTolerance = 1.0 / 512;

/// The number of scales, from the minimum to 1, that a text of several lines can shrink to. Finer steps would
/// be invisible.
constexpr int scaleSteps = 16;

class Fitting {
 public:
  Fitting(std::string_view text, const Environment& environment, double width, TextMeasurer& measurer)
      : text_(text), environment_(environment), width_(width), measurer_(measurer) {}

  FittedText atScale(double scale) const {
    const Font font = environment_.font.scaled(scale);
    const TextMetrics own = measurer_.measure(text_, font, std::nullopt, environment_.lineLimit);
    if (own.size.width <= width_ + widthTolerance) return {font, own};
    return {font, measurer_.measure(text_, font, width_, environment_.lineLimit)};
  }

  /// Shrinks a text that has one line. The line keeps its baseline and its original height, so that nothing
  /// around it moves.
  FittedText shrunkOnOneLine() const {
    const TextMetrics whole = measurer_.measure(text_, environment_.font, std::nullopt, 1);
    FittedText fitted = smallerOnOneLine(whole);
    fitted.metrics.size.height = whole.size.height;
    fitted.metrics.baseline = whole.baseline;
    return fitted;
  }

  FittedText shrunkOnSeveralLines() const {
    const double smallest = environment_.minimumScaleFactor;
    FittedText best = atScale(smallest);
    if (best.metrics.truncated) return hasTooManyLines() ? atScale(1) : best;
    int fits = 0;
    int tooLarge = scaleSteps;
    while (tooLarge - fits > 1) {
      const int step = (fits + tooLarge) / 2;
      const FittedText fitted = atScale(smallest + (1 - smallest) * step / scaleSteps);
      (fitted.metrics.truncated ? tooLarge : fits) = step;
      if (!fitted.metrics.truncated) best = fitted;
    }
    return best;
  }

 private:
  /// Returns whether the text itself has more lines than are allowed, so that it fits at no scale.
  bool hasTooManyLines() const {
    return measurer_.measure(text_, environment_.font, std::nullopt, environment_.lineLimit).truncated;
  }

  /// Shrinks in proportion to the excess width. Except for hinting and rounding, the width of a line is
  /// proportional to its scale, so the first try nearly always fits.
  FittedText smallerOnOneLine(const TextMetrics& whole) const {
    const double smallest = environment_.minimumScaleFactor;
    constexpr int tries = 4;
    FittedText fitted{environment_.font, whole};
    double scale = 1;
    for (int i = 0; i < tries; ++i) {
      const double own = fitted.metrics.size.width;
      if (own <= width_ + widthTolerance) return fitted;
      if (scale * width_ < smallest * own) break;
      scale *= width_ / own;
      fitted.font = environment_.font.scaled(scale);
      fitted.metrics = measurer_.measure(text_, fitted.font, std::nullopt, 1);
    }
    return atScale(smallest);
  }

  std::string_view text_;
  const Environment& environment_;
  double width_;
  TextMeasurer& measurer_;
};

}  // namespace

FittedText fitText(std::string_view text, const Environment& environment, double width,
                   TextMeasurer& measurer) {
  if (environment.font.size == 0) return {environment.font, {}};
  const Fitting fitting{text, environment, width, measurer};
  const bool mayShrink = environment.minimumScaleFactor < 1 && std::isfinite(width);
  if (mayShrink && environment.lineLimit == 1) return fitting.shrunkOnOneLine();
  FittedText whole = fitting.atScale(1);
  return mayShrink && whole.metrics.truncated ? fitting.shrunkOnSeveralLines() : whole;
}

}  // namespace ui
