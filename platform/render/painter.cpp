#include "tarno/render/painter.hpp"

#include <algorithm>
#include <cmath>

#include "tarno/render/cairo_handle.hpp"
#include "tarno/ui/description/path_bounds.hpp"

namespace render {
namespace {

struct PathBuilder {
  cairo_t* cairo;

  void operator()(const ui::Path::Move& e) const { cairo_move_to(cairo, e.to.x, e.to.y); }
  void operator()(const ui::Path::Line& e) const { cairo_line_to(cairo, e.to.x, e.to.y); }
  void operator()(const ui::Path::Arc& e) const {
    const auto add = e.end.radians > e.start.radians ? cairo_arc : cairo_arc_negative;
    add(cairo, e.center.x, e.center.y, e.radius, e.start.radians, e.end.radians);
  }
  void operator()(const ui::Path::Close&) const { cairo_close_path(cairo); }
};

void setPath(cairo_t* cairo, const ui::Path& path) {
  cairo_new_path(cairo);
  for (const auto& element : path.elements) std::visit(PathBuilder{cairo}, element);
}

/// Moves user space by at most half a pixel, so that `anchor` is on a corner of a pixel.
void snap(cairo_t* cairo, ui::Point anchor) {
  cairo_user_to_device(cairo, &anchor.x, &anchor.y);
  double right = std::floor(anchor.x + 0.5) - anchor.x;
  double down = std::floor(anchor.y + 0.5) - anchor.y;
  cairo_device_to_user_distance(cairo, &right, &down);
  cairo_translate(cairo, right, down);
}

/// Stretches user space so that `box` covers the pixels from `low` to `high`.
void stretch(cairo_t* cairo, const ui::Rect& box, ui::Point low, ui::Point high) {
  if (!(box.size.width > 0 && box.size.height > 0)) return;
  const double across = (high.x - low.x) / box.size.width;
  const double down = (high.y - low.y) / box.size.height;
  cairo_matrix_t matrix;
  cairo_matrix_init(&matrix, across, 0, 0, down, low.x - box.origin.x * across, low.y - box.origin.y * down);
  cairo_set_matrix(cairo, &matrix);
}

/// Stretches user space so that the background `box` covers whole pixels. At a fractional scale, its last row
/// or column would otherwise be half transparent.
void stretchGround(cairo_t* cairo, const ui::Rect& box) {
  constexpr double tolerance = 1e-6;  // for rounding errors of a whole number
  ui::Point end{box.right(), box.bottom()};
  cairo_user_to_device(cairo, &end.x, &end.y);
  stretch(cairo, box, {}, {std::ceil(end.x - tolerance), std::ceil(end.y - tolerance)});
}

/// Stretches user space so that `box` covers whole pixels (see ui::FillPath::fitsPixels).
void stretchToPixels(cairo_t* cairo, const ui::Rect& box) {
  ui::Point low = box.origin, high{box.right(), box.bottom()};
  cairo_user_to_device(cairo, &low.x, &low.y);
  cairo_user_to_device(cairo, &high.x, &high.y);
  // The number of rows is even, so that an anchor at the centre is in the middle.
  const double middle = std::floor((low.y + high.y) / 2 + 0.5);
  const double half = std::max(std::round((high.y - low.y) / 2), 1.0);
  const double left = std::round(low.x);
  stretch(cairo, box, {left, middle - half}, {std::max(std::round(high.x), left + 1), middle + half});
}

struct ItemPainter {
  const ui::Size& size;
  TextEngine& text;
  cairo_t* cairo;

  void operator()(const ui::FillPath& item) const {
    cairo_matrix_t place;
    cairo_get_matrix(cairo, &place);
    if (!isVector(cairo)) {
      if (item.anchor) snap(cairo, *item.anchor);
      const ui::Rect box = ui::bounds(item.path);
      if (box == ui::Rect{{}, size})
        stretchGround(cairo, box);
      else if (item.fitsPixels)
        stretchToPixels(cairo, box);
    }
    setPath(cairo, item.path);
    setColor(cairo, item.color);
    cairo_fill(cairo);
    cairo_set_matrix(cairo, &place);
  }

  void operator()(const ui::StrokePath& item) const {
    setPath(cairo, item.path);
    setColor(cairo, item.color);
    cairo_set_line_width(cairo, item.style.lineWidth);
    cairo_set_line_cap(cairo,
                       item.style.lineCap == ui::LineCap::round ? CAIRO_LINE_CAP_ROUND : CAIRO_LINE_CAP_BUTT);
    cairo_stroke(cairo);
  }

  void operator()(const ui::TextRun& item) const { text.draw(item, cairo); }
};

}  // namespace

void paint(const ui::Scene& scene, TextEngine& text, cairo_t* cairo) {
  cairo_save(cairo);
  cairo_set_fill_rule(cairo, CAIRO_FILL_RULE_WINDING);
  cairo_set_line_join(cairo, CAIRO_LINE_JOIN_MITER);
  cairo_set_miter_limit(cairo, 10);
  for (const ui::SceneItem& item : scene.items) std::visit(ItemPainter{scene.size, text, cairo}, item);
  cairo_new_path(cairo);
  cairo_restore(cairo);
}

}  // namespace render
