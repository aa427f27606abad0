#pragma once

#include <memory>

#include "tarno/ui/scene.hpp"
#include "tarno/ui/text_measurer.hpp"

typedef struct _cairo cairo_t;  // NOLINT(bugprone-reserved-identifier): Cairo's own name

namespace render {

/// Whether the face of the rounded design, Quicksand, is installed. Without it, texts are set in the plain
/// sans-serif face of the machine, in lines of the same height.
bool hasRoundedFace();

/// Measures and draws text with Pango: shaping, bidirectional order and fallback faces for every script. The
/// rounded design is set in Quicksand. What it measures is what it draws, at every scale: metrics are not
/// hinted. Keeps the layouts that it made last, so that drawing what was just measured, or drawing it again,
/// shapes nothing anew.
///
/// An engine belongs to one thread at a time.
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
