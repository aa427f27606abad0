// Measures how long it takes to draw a medium tile at scale 2 again: the view, its layout and its painting.
// Compares it with plain Cairo and Pango calls for the same shapes and texts.

#include <benchmark/benchmark.h>
#include <pango/pangocairo.h>

#include <algorithm>
#include <chrono>
#include <vector>

#include "tarno/render/painter.hpp"
#include "tarno/render/text_engine.hpp"
#include "tarno/tarno-widget/tile.hpp"

namespace {

using Clock = std::chrono::steady_clock;

constexpr double scale = 2;

/// A transparent image for a tile. Its user space is in points.
class Canvas {
 public:
  explicit Canvas(ui::Size size)
      : surface_(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, static_cast<int>(size.width * scale),
                                            static_cast<int>(size.height * scale))),
        cairo_(cairo_create(surface_)) {
    cairo_scale(cairo_, scale, scale);
  }
  ~Canvas() {
    cairo_destroy(cairo_);
    cairo_surface_destroy(surface_);
  }
  Canvas(const Canvas&) = delete;
  Canvas& operator=(const Canvas&) = delete;

  cairo_t* clear() {
    cairo_set_operator(cairo_, CAIRO_OPERATOR_CLEAR);
    cairo_paint(cairo_);
    cairo_set_operator(cairo_, CAIRO_OPERATOR_OVER);
    return cairo_;
  }

 private:
  cairo_surface_t* surface_;
  cairo_t* cairo_;
};

/// The floor: draws paths and layouts that were prepared before, with glyphs on whole pixels, which is the
/// fastest way in Cairo. Never releases its objects.
class BareCalls {
 public:
  BareCalls(const ui::Scene& scene, cairo_t* cairo) : cairo_(cairo) {
    PangoFontMap* fonts = pango_cairo_font_map_get_default();
    context_ = pango_font_map_create_context(fonts);
    pango_cairo_context_set_resolution(context_, 72);
    for (const ui::SceneItem& item : scene.items) std::visit([this](const auto& i) { prepare(i); }, item);
  }

  void draw() const {
    for (const Step& step : steps_) {
      cairo_set_source_rgba(cairo_, step.color.red, step.color.green, step.color.blue, step.color.alpha);
      if (step.path) cairo_append_path(cairo_, step.path);
      switch (step.kind) {
        case Kind::fill: cairo_fill(cairo_); break;
        case Kind::stroke:
          cairo_set_line_width(cairo_, step.stroke.lineWidth);
          cairo_set_line_cap(
              cairo_, step.stroke.lineCap == ui::LineCap::round ? CAIRO_LINE_CAP_ROUND : CAIRO_LINE_CAP_BUTT);
          cairo_stroke(cairo_);
          break;
        case Kind::text:
          cairo_move_to(cairo_, step.at.x, step.at.y);
          pango_cairo_show_layout(cairo_, step.layout);
          cairo_new_path(cairo_);
      }
    }
  }

 private:
  enum class Kind { fill, stroke, text };
  struct Step {
    Kind kind;
    ui::Color color;
    cairo_path_t* path = nullptr;
    ui::StrokeStyle stroke;
    PangoLayout* layout = nullptr;
    ui::Point at;
  };

  cairo_path_t* copy(const ui::Path& path) const {
    cairo_new_path(cairo_);
    for (const auto& element : path.elements) std::visit([this](const auto& e) { add(e); }, element);
    cairo_path_t* copied = cairo_copy_path(cairo_);
    cairo_new_path(cairo_);
    return copied;
  }
  void add(const ui::Path::Move& e) const { cairo_move_to(cairo_, e.to.x, e.to.y); }
  void add(const ui::Path::Line& e) const { cairo_line_to(cairo_, e.to.x, e.to.y); }
  void add(const ui::Path::Arc& e) const {
    const auto arc = e.end.radians > e.start.radians ? cairo_arc : cairo_arc_negative;
    arc(cairo_, e.center.x, e.center.y, e.radius, e.start.radians, e.end.radians);
  }
  void add(const ui::Path::Close&) const { cairo_close_path(cairo_); }

  void prepare(const ui::FillPath& i) { steps_.push_back({Kind::fill, i.color, copy(i.path)}); }
  void prepare(const ui::StrokePath& i) { steps_.push_back({Kind::stroke, i.color, copy(i.path), i.style}); }
  void prepare(const ui::TextRun& i) {
    PangoLayout* layout = pango_layout_new(context_);
    PangoFontDescription* face = pango_font_description_new();
    const bool isMedium = i.font.fontWeight == ui::FontWeight::medium;
    pango_font_description_set_family(face, isMedium ? "Quicksand Medium" : "Quicksand");
    pango_font_description_set_weight(face, isMedium ? PANGO_WEIGHT_MEDIUM : PANGO_WEIGHT_BOLD);
    pango_font_description_set_size(face, static_cast<int>(i.font.size * PANGO_SCALE));
    pango_layout_set_font_description(layout, face);
    pango_font_description_free(face);
    pango_layout_set_width(layout, static_cast<int>(i.box.size.width * PANGO_SCALE) + PANGO_SCALE);
    pango_layout_set_text(layout, i.text.c_str(), -1);
    steps_.push_back({Kind::text, i.color, nullptr, {}, layout, i.box.origin});
  }

  cairo_t* cairo_;
  PangoContext* context_;
  std::vector<Step> steps_;
};

double median(std::vector<double>& values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

template <class Work>
double microseconds(const Work& work) {
  const auto start = Clock::now();
  work();
  return std::chrono::duration<double, std::micro>(Clock::now() - start).count();
}

void redrawAgainstBareCalls(benchmark::State& state) {
  using enum widgetkit::WidgetFamily;
  const auto widget = TarnoMacStatusWidget{}.body();
  const auto entry = widget.provider.placeholder({});
  render::TextEngine text;
  const auto scene = [&] {
    return extension::tileScene(widget.content(entry, {systemMedium}), systemMedium, text);
  };
  Canvas ourCanvas(extension::tileSize(systemMedium));
  Canvas bareCanvas(extension::tileSize(systemMedium));
  const BareCalls bareCalls(scene(), bareCanvas.clear());
  std::vector<double> ours;
  std::vector<double> floor;
  for (auto _ : state) {
    cairo_t* cairo = ourCanvas.clear();
    ours.push_back(microseconds([&] { render::paint(scene(), text, cairo); }));
    bareCanvas.clear();
    floor.push_back(microseconds([&] { bareCalls.draw(); }));
  }
  state.counters["ours_us"] = median(ours);
  state.counters["floor_us"] = median(floor);
  state.counters["ours/floor"] = median(ours) / median(floor);
}
BENCHMARK(redrawAgainstBareCalls)->MinTime(2.0);

}  // namespace

BENCHMARK_MAIN();
