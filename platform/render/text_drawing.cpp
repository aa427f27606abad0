#include "tarno/render/text_drawing.hpp"

#include <hb.h>
#include <pango/pangocairo.h>
#include <pango/pangofc-font.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <utility>

namespace render {
namespace {

/// The maximum size of a mask in pixels. A larger text is filled anew each time.
constexpr double largestStamp = 4e6;

constexpr std::size_t keptStamps = 4;

/// Returns whether the glyphs of `run` are images, coloured or not.
bool hasPictures(const PangoGlyphItem* run) {
  PangoFont* font = run->item->analysis.font;
  if (!PANGO_IS_FC_FONT(font)) return false;
  FcPattern* pattern = pango_fc_font_get_pattern(PANGO_FC_FONT(font));
  FcBool color = FcFalse;
  FcBool outline = FcTrue;
  FcPatternGetBool(pattern, FC_COLOR, 0, &color);
  FcPatternGetBool(pattern, FC_OUTLINE, 0, &outline);
  return color || !outline;
}

/// Calls `visit(line, run)` for every run of glyphs, with the current point of `cairo` at its start. All runs
/// of a line are put on the same baseline: Pango would shift some scripts up or down, even within a word.
/// `scale` is the number of pixels per unit; baselines are rounded to whole pixels, unless `scale` is 0.
template <class Visit>
void visitRuns(const ShapedText& text, cairo_t* cairo, double scale, const Visit& visit) {
  double y = 0;
  for (const ShapedText::Line& line : text.lines()) {
    const double baseline = scale > 0 ? std::round(y * scale) / scale : y;
    double x = line.x;
    for (const GSList* node = line.glyphs->runs; node; node = node->next) {
      auto* run = static_cast<PangoGlyphItem*>(node->data);
      cairo_move_to(cairo, x, baseline);
      visit(line, run);
      x += pango_units_to_double(pango_glyph_string_get_width(run->glyphs));
    }
    y += text.lineHeight();
  }
}

void addOutlines(const ShapedText& text, cairo_t* cairo, double scale) {
  visitRuns(text, cairo, scale, [&](const ShapedText::Line&, PangoGlyphItem* run) {
    if (!hasPictures(run)) pango_cairo_glyph_string_path(cairo, run->item->analysis.font, run->glyphs);
  });
}

/// Draws a run of images with the opacity of the source, which Cairo ignores for coloured glyphs.
void showPictures(const ShapedText::Line& line, PangoGlyphItem* run, cairo_t* cairo) {
  const tarno::Handle<cairo_pattern_t, cairo_pattern_destroy> source(
      cairo_pattern_reference(cairo_get_source(cairo)));
  double opacity = 1;
  cairo_pattern_get_rgba(source.get(), nullptr, nullptr, nullptr, &opacity);
  if (opacity < 1) cairo_push_group(cairo);
  pango_cairo_show_glyph_item(cairo, pango_layout_get_text(line.glyphs->layout), run);
  if (opacity < 1) {
    cairo_pop_group_to_source(cairo);
    cairo_paint_with_alpha(cairo, opacity);
    cairo_set_source(cairo, source.get());
  }
}

/// Clips to the lines of `text` and a quarter of a line above and below. That is enough for every script, and
/// keeps stacked combining marks from covering other texts.
void clipToLines(const ShapedText& text, cairo_t* cairo) {
  const double around = text.lineHeight() / 4;
  const ui::TextMetrics& metrics = text.metrics();
  // Slanted letters may extend beyond the sides of their line.
  const double side = text.lineHeight();
  cairo_rectangle(cairo, -side, -metrics.baseline - around, metrics.size.width + 2 * side,
                  metrics.size.height + 2 * around);
  cairo_clip(cairo);
}

void drawPictures(const ShapedText& text, cairo_t* cairo, double scale) {
  visitRuns(text, cairo, scale, [&](const ShapedText::Line& line, PangoGlyphItem* run) {
    if (hasPictures(run)) showPictures(line, run, cairo);
  });
  cairo_new_path(cairo);
}

/// Draws a run of images as one image. With one image per glyph, Cairo 1.16 would list an image in the
/// resources of a PDF once per use, and a PDF with the same emoji twice would be malformed.
void showPicturesAsImage(const ShapedText::Line& line, PangoGlyphItem* run, cairo_t* cairo) {
  PangoRectangle ink;
  pango_glyph_string_extents(run->glyphs, run->item->analysis.font, &ink, nullptr);
  pango_extents_to_pixels(&ink, nullptr);
  if (ink.width <= 0 || ink.height <= 0) return;
  // At the shaping size, this is about the resolution of the bitmaps in emoji fonts.
  const double resolution = std::min(4.0, 16384.0 / ink.width);
  const Surface image(cairo_image_surface_create(CAIRO_FORMAT_ARGB32,
                                                 static_cast<int>(std::ceil(ink.width * resolution)),
                                                 static_cast<int>(std::ceil(ink.height * resolution))));
  cairo_surface_set_device_scale(image.get(), resolution, resolution);
  cairo_surface_set_device_offset(image.get(), -ink.x * resolution, -ink.y * resolution);
  const Context glyphs(cairo_create(image.get()));
  cairo_set_source(glyphs.get(), cairo_get_source(cairo));
  cairo_move_to(glyphs.get(), 0, 0);
  showPictures(line, run, glyphs.get());
  double x, y;
  cairo_get_current_point(cairo, &x, &y);
  cairo_save(cairo);
  cairo_set_source_surface(cairo, image.get(), x, y);
  cairo_paint(cairo);
  cairo_restore(cairo);
}

/// Writes the text of a run of images into a PDF, so that it can be selected, searched and read aloud. The
/// text belongs to two blanks that are together as wide as the images. (Cairo 1.16 would lose the text of a
/// single blank if the PDF has no blank before it.)
void showBlanksFor(const ShapedText::Line& line, const PangoGlyphItem* run, cairo_t* cairo) {
  if (!cairo_surface_has_show_text_glyphs(cairo_get_target(cairo))) return;
  PangoLayout* layout = line.glyphs->layout;
  const ObjectHandle<PangoFont> font(
      pango_context_load_font(pango_layout_get_context(layout), pango_layout_get_font_description(layout)));
  hb_font_t* const metrics = font ? pango_font_get_hb_font(font.get()) : nullptr;
  hb_codepoint_t blank = 0;
  if (!metrics || !hb_font_get_nominal_glyph(metrics, ' ', &blank)) return;
  const double advance = hb_font_get_glyph_h_advance(metrics, blank);
  const double half = pango_glyph_string_get_width(run->glyphs) / 2.0;
  if (!(advance > 0 && half > 0)) return;

  cairo_save(cairo);
  cairo_scaled_font_t* const scaled = pango_cairo_font_get_scaled_font(PANGO_CAIRO_FONT(font.get()));
  cairo_set_font_face(cairo, cairo_scaled_font_get_font_face(scaled));
  cairo_matrix_t wide;
  cairo_matrix_init_scale(&wide, shapingSize * half / advance, shapingSize);
  cairo_set_font_matrix(cairo, &wide);
  double x, y;
  cairo_get_current_point(cairo, &x, &y);
  const std::array<cairo_glyph_t, 2> blanks{{{blank, x, y}, {blank, x + half / PANGO_SCALE, y}}};
  const cairo_text_cluster_t cluster{run->item->length, 2};
  cairo_show_text_glyphs(cairo, pango_layout_get_text(layout) + run->item->offset, run->item->length,
                         blanks.data(), 2, &cluster, 1, cairo_text_cluster_flags_t{});
  cairo_restore(cairo);
}

void drawAsVector(const ShapedText& text, cairo_t* cairo) {
  clipToLines(text, cairo);
  visitRuns(text, cairo, 0, [&](const ShapedText::Line& line, PangoGlyphItem* run) {
    if (hasPictures(run)) {
      showBlanksFor(line, run, cairo);
      showPicturesAsImage(line, run, cairo);
    } else {
      pango_cairo_show_glyph_item(cairo, pango_layout_get_text(line.glyphs->layout), run);
    }
  });
  cairo_new_path(cairo);
}

/// Returns the mask of `text`; nothing if it would be too large.
std::optional<TextStamp> makeStamp(const ShapedText& text, double scale, double start) {
  // The surface has no bounds, because Cairo omits glyphs that are far outside a surface.
  const Surface sheet(cairo_recording_surface_create(CAIRO_CONTENT_ALPHA, nullptr));
  const Context outlines(cairo_create(sheet.get()));
  cairo_translate(outlines.get(), start, 0);
  cairo_scale(outlines.get(), scale, scale);
  clipToLines(text, outlines.get());
  addOutlines(text, outlines.get(), scale);
  cairo_identity_matrix(outlines.get());
  double left, top, right, bottom;
  cairo_path_extents(outlines.get(), &left, &top, &right, &bottom);
  double clipLeft, clipTop, clipRight, clipBottom;
  cairo_clip_extents(outlines.get(), &clipLeft, &clipTop, &clipRight, &clipBottom);
  left = std::floor(std::max(left, clipLeft));
  top = std::floor(std::max(top, clipTop));
  const double width = std::ceil(std::min(right, clipRight)) - left;
  const double height = std::ceil(std::min(bottom, clipBottom)) - top;
  if (width * height > largestStamp) return std::nullopt;

  TextStamp stamp{scale, start, nullptr, static_cast<int>(left), static_cast<int>(top)};
  if (width < 1 || height < 1) return stamp;
  stamp.coverage.reset(
      cairo_image_surface_create(CAIRO_FORMAT_A8, static_cast<int>(width), static_cast<int>(height)));
  const Context filled(cairo_create(stamp.coverage.get()));
  cairo_translate(filled.get(), -left, -top);
  const tarno::Handle<cairo_path_t, cairo_path_destroy> path(cairo_copy_path(outlines.get()));
  cairo_append_path(filled.get(), path.get());
  cairo_fill(filled.get());
  return stamp;
}

/// Returns the mask of `text` from `stamps`, which it adds if it is missing. Null if it would be too large.
/// Valid until the next call.
const TextStamp* findStamp(TextStamps& stamps, const ShapedText& text, double scale, double start) {
  const auto found = std::find_if(stamps.begin(), stamps.end(), [&](const TextStamp& stamp) {
    return stamp.scale == scale && stamp.start == start;
  });
  if (found != stamps.end()) return &*found;
  std::optional<TextStamp> made = makeStamp(text, scale, start);
  if (!made) return nullptr;
  if (stamps.size() == keptStamps) stamps.erase(stamps.begin());
  return &stamps.emplace_back(std::move(*made));
}

void drawOnPixels(const ShapedText& text, TextStamps& stamps, cairo_t* cairo) {
  cairo_matrix_t pixels;
  cairo_get_matrix(cairo, &pixels);
  // The text moves sideways by at most a sixteenth of a pixel, so that rounding errors do not require a new
  // mask.
  pixels.x0 = std::round(pixels.x0 * 8) / 8;
  pixels.y0 = std::round(pixels.y0);
  const double scale = pixels.xx;
  const double left = std::floor(pixels.x0);

  cairo_identity_matrix(cairo);
  const TextStamp* stamp = findStamp(stamps, text, scale, pixels.x0 - left);
  if (stamp && stamp->coverage)
    cairo_mask_surface(cairo, stamp->coverage.get(), left + stamp->left, pixels.y0 + stamp->top);
  cairo_set_matrix(cairo, &pixels);
  if (!stamp) {
    clipToLines(text, cairo);
    addOutlines(text, cairo, scale);
    cairo_fill(cairo);
  }
  drawPictures(text, cairo, scale);
}

}  // namespace

void drawText(const ShapedText& text, TextStamps& stamps, cairo_t* cairo) {
  cairo_save(cairo);
  cairo_new_path(cairo);
  if (isVector(cairo))
    drawAsVector(text, cairo);
  else
    drawOnPixels(text, stamps, cairo);
  cairo_restore(cairo);
}

}  // namespace render
