#include "tarno-desktop/live_tile.hpp"

#include <cstdint>

#include "common/command_line.hpp"
#include "render/cairo_handle.hpp"
#include "render/painter.hpp"
#include "render/png.hpp"
#include "tarno-widget/tile.hpp"

namespace desktop {
namespace {

/// Without a compositor alpha means nothing: the pixels that a corner covers in part show the colour that
/// covers them.
void makeOpaque(cairo_surface_t* image) {
  cairo_surface_flush(image);
  const int width = cairo_image_surface_get_width(image), height = cairo_image_surface_get_height(image);
  for (int y = 0; y < height; ++y) {
    void* row = cairo_image_surface_get_data(image) + y * cairo_image_surface_get_stride(image);
    for (auto* pixel = static_cast<std::uint32_t*>(row); pixel != static_cast<std::uint32_t*>(row) + width;
         ++pixel) {
      if (*pixel != 0) *pixel = 255u << 24 | render::unpremultiplied(*pixel);
    }
  }
  cairo_surface_mark_dirty(image);
}

render::Surface paintImage(const ui::Scene& scene, render::TextEngine& text, int scale) {
  render::Surface image{cairo_image_surface_create(CAIRO_FORMAT_ARGB32,
                                                   static_cast<int>(scene.size.width) * scale,
                                                   static_cast<int>(scene.size.height) * scale)};
  const render::Context cairo{cairo_create(image.get())};
  cairo_scale(cairo.get(), scale, scale);
  render::paint(scene, text, cairo.get());
  return image;
}

}  // namespace

LiveTile::LiveTile(widgetkit::WidgetConfiguration configuration, widgetkit::WidgetFamily family)
    : configuration_(std::move(configuration)), family_(family) {}

ui::Size LiveTile::size() const { return extension::tileSize(family_); }

bool LiveTile::failed(const char* what, const std::string& reason) {
  const auto line = std::string{what} + ": " + reason;
  if (line != lastFailure_) program::complain(line);
  lastFailure_ = line;
  return false;
}

std::optional<widgetkit::TimelineReloadPolicy> LiveTile::ask() {
  try {
    auto timeline = configuration_.provider->timeline(extension::requestContext(family_));
    if (!timeline.entries.empty()) entry_ = std::move(timeline.entries.front());
    return timeline.policy;
  } catch (const std::exception& error) {
    failed("no timeline", error.what());
    return std::nullopt;
  }
}

bool LiveTile::refresh() {
  if (!entry_) return false;
  try {
    auto scene = extension::tileScene(*entry_, family_, text_);
    lastFailure_.clear();
    if (scene == scene_) return false;
    scene_ = std::move(scene);
    return true;
  } catch (const std::exception& error) {
    return failed("cannot lay out the tile", error.what());
  }
}

void LiveTile::paint(cairo_t* cairo, int scale, bool isOpaque) {
  try {
    const auto image = paintImage(scene_, text_, scale);
    if (isOpaque) makeOpaque(image.get());
    cairo_surface_set_device_scale(image.get(), scale, scale);
    cairo_set_operator(cairo, CAIRO_OPERATOR_SOURCE);
    cairo_set_source_surface(cairo, image.get(), 0, 0);
    cairo_pattern_set_filter(cairo_get_source(cairo), CAIRO_FILTER_NEAREST);
    cairo_paint(cairo);
  } catch (const std::exception& error) {
    failed("cannot draw the tile", error.what());
  }
}

}  // namespace desktop
