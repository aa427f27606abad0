#pragma once

#include <memory>

#include "tarno/ui/scene.hpp"
#include "tarno/ui/text_measurer.hpp"

typedef struct _cairo cairo_t;  // NOLINT(bugprone-reserved-identifier): Cairo's own name

namespace render {

/// Returns whether Quicksand, the font of the rounded design, is installed. Without it, texts use the
/// sans-serif font with the same line height.
bool hasRoundedFace();

/// Measures and draws text with Pango: shaping, bidirectional text and fallback fonts for every script. The
/// rounded design uses Quicksand. A text is drawn exactly as it was measured, at every scale, because metrics
/// are not hinted. Recent layouts are kept, so that a text need not be shaped again to be drawn.
///
/// For one thread at a time.
class TextEngine final : public ui::TextMeasurer {
 public:
  TextEngine();
  ~TextEngine() override;
  TextEngine(const TextEngine&) = delete;
  TextEngine& operator=(const TextEngine&) = delete;

  ui::TextMetrics measure(std::string_view text, const ui::Font& font, std::optional<double> width,
                          int maxLines) override;

  /// Draws `run` on `cairo`, whose user space is in points.
  void draw(const ui::TextRun& run, cairo_t* cairo);

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace render
