#include "tarno/render/text_engine.hpp"

#include <cairo.h>
#include <glib.h>

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <vector>

#include "tarno/render/cairo_handle.hpp"
#include "tarno/render/display_text.hpp"
#include "tarno/render/font_contexts.hpp"
#include "tarno/render/font_face.hpp"
#include "tarno/render/shaped_text.hpp"
#include "tarno/render/text_drawing.hpp"

namespace render {
namespace {

/// The number of layouts that are kept: enough for all texts of a tile in every width that the layout tries.
constexpr std::size_t keptTexts = 128;

/// The factor by which Quicksand is drawn smaller, because it is wider than the usual rounded fonts. With it,
/// the longest status line fits the dial and the longest pills fit their row.
constexpr double roundedScale = 0.97;

/// Converts a width in points to Pango units at the shaping size. A thousandth of a unit is added for
/// rounding errors.
int units(std::optional<double> width, double scale) {
  const double count = width.value_or(ui::infinity) / scale * PANGO_SCALE + 1e-3;
  if (count >= unlimited) return unlimited;
  return count > 0 ? static_cast<int>(count) : 0;
}

/// Returns whether `text` consists of Latin letters and punctuation that are all in `face`. Checks the text
/// and not its layout, because a layout that was cut does not show all missing characters.
bool isLatinIn(PangoContext* context, const FontDescription& face, std::string_view text) {
  const ObjectHandle<PangoFont> font(pango_context_load_font(context, face.get()));
  for (const char* at = text.data(); at < text.data() + text.size();
       at += g_utf8_skip[static_cast<unsigned char>(*at)]) {
    const gunichar c = g_utf8_get_char(at);
    if (c == 0x2028) continue;  // a line break
    if ((c >= 0x250 && (c < 0x2010 || c > 0x2027)) || !pango_font_has_char(font.get(), c)) return false;
  }
  return true;
}

}  // namespace

class TextEngine::Impl {
 public:
  struct Kept {
    std::string text;
    ui::Font font;
    int maxLines;
    ShapedText shaped;
    TextStamps stamps;
    unsigned long lastUse = 0;

    bool serves(std::string_view otherText, const ui::Font& otherFont, int width, int otherMaxLines) const {
      return maxLines == otherMaxLines && shaped.narrowest() <= width && width <= shaped.widest() &&
             font == otherFont && text == otherText;
    }
  };

  /// Returns the factor from the shaping size to the size of `font`.
  double scaleOf(const ui::Font& font) {
    constexpr double smallest = 1e-3;
    constexpr double largest = 4096;
    const double size = font.size > smallest ? std::min(font.size, largest) : smallest;
    return size * drawnScale(font) / shapingSize;
  }

  /// Returns the factor from the size of `font` to the size that its glyphs are drawn at.
  double drawnScale(const ui::Font& font) {
    return font.fontDesign == ui::FontDesign::rounded ? roundedScale * scaleOfStandIn(font) : 1;
  }

  /// Returns the kept layout of a text, which it creates if it is missing. Valid until the next call.
  Kept& find(std::string_view text, const ui::Font& sizedFont, int width, int maxLines) {
    const ui::Font font{shapingSize, sizedFont.fontWeight, sizedFont.fontDesign};
    text = text.substr(0, longestDisplayText + 1);  // text beyond the limit is never visible
    auto found = std::find_if(kept_.begin(), kept_.end(),
                              [&](const Kept& kept) { return kept.serves(text, font, width, maxLines); });
    if (found == kept_.end()) {
      if (kept_.size() == keptTexts)
        kept_.erase(std::min_element(kept_.begin(), kept_.end(),
                                     [](const Kept& a, const Kept& b) { return a.lastUse < b.lastUse; }));
      kept_.push_back({std::string(text), font, maxLines, shape(text, font, width, maxLines), {}});
      found = std::prev(kept_.end());
    }
    found->lastUse = ++uses_;
    return *found;
  }

 private:
  ShapedText shape(std::string_view text, const ui::Font& font, int width, int maxLines) {
    if (!contexts_) contexts_.emplace();
    const DisplayText shown = displayText(text, maxLines == 1);
    PangoContext* rounded = font.fontDesign == ui::FontDesign::rounded ? contexts_->rounded() : nullptr;
    if (rounded) {
      const FontDescription face = fontFace(font);
      if (isLatinIn(rounded, face, shown.text))
        return {rounded, face, lineExtent(font, rounded, face), shown, width, maxLines};
    }
    PangoContext* all = contexts_->all();
    const FontDescription face = fontFaceAmongAll(font);
    auto extent = lineExtent(font, all, face);
    if (font.fontDesign == ui::FontDesign::rounded) {  // the line height does not depend on the stand-in font
      extent.ascent /= scaleOfStandIn(font);
      extent.descent /= scaleOfStandIn(font);
    }
    return {all, face, extent, shown, width, maxLines};
  }

  /// Returns standInScale(), or 1 if Quicksand is installed.
  double scaleOfStandIn(const ui::Font& font) {
    if (!contexts_) contexts_.emplace();
    if (contexts_->hasRounded()) return 1;
    auto& scale = standInScales_.at(static_cast<std::size_t>(font.fontWeight));
    if (!scale) {
      const ui::Font shaped{shapingSize, font.fontWeight, font.fontDesign};
      scale = standInScale(shaped, contexts_->all(), fontFaceAmongAll(shaped));
    }
    return *scale;
  }

  std::array<std::optional<double>, 4> standInScales_;  ///< by weight
  std::optional<FontContexts> contexts_;                ///< created for the first text; some scenes have none
  std::vector<Kept> kept_;
  unsigned long uses_ = 0;
};

bool hasRoundedFace() { return FontContexts{}.hasRounded(); }

TextEngine::TextEngine() : impl_(std::make_unique<Impl>()) {}

TextEngine::~TextEngine() = default;

ui::TextMetrics TextEngine::measure(std::string_view text, const ui::Font& font, std::optional<double> width,
                                    int maxLines) {
  const double scale = impl_->scaleOf(font);
  ui::TextMetrics metrics = impl_->find(text, font, units(width, scale), maxLines).shaped.metrics();
  metrics.size = {metrics.size.width * scale, metrics.size.height * scale};
  metrics.baseline *= scale;
  metrics.drawnScale = impl_->drawnScale(font);
  if (width) metrics.size.width = std::min(metrics.size.width, std::max(*width, 0.0));
  return metrics;
}

void TextEngine::draw(const ui::TextRun& run, cairo_t* cairo) {
  const double scale = impl_->scaleOf(run.font);
  auto& kept = impl_->find(run.text, run.font, units(run.box.size.width, scale), run.maxLines);
  const double slack = run.box.size.width - kept.shaped.metrics().size.width * scale;
  cairo_save(cairo);
  cairo_translate(cairo, run.box.origin.x, run.box.origin.y);
  cairo_translate(cairo, kept.shaped.rightToLeft() ? slack : 0, run.baseline);
  cairo_scale(cairo, scale, scale);
  setColor(cairo, run.color);
  drawText(kept.shaped, kept.stamps, cairo);
  cairo_restore(cairo);
}

}  // namespace render
