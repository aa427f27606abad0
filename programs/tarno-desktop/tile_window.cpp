#include "tarno-desktop/tile_window.hpp"

#include "render/cairo_handle.hpp"
#include "render/painter.hpp"
#include "tarno-desktop/tile_accessible.hpp"
#include "tarno-widget/tile.hpp"

namespace desktop {
namespace {

using Region = render::Handle<cairo_region_t, cairo_region_destroy>;

/// The rounded rectangle that a tile fills, as a region of its window.
Region outline(ui::Size size) {
  const render::Surface mask{cairo_image_surface_create(CAIRO_FORMAT_ARGB32, static_cast<int>(size.width),
                                                        static_cast<int>(size.height))};
  const render::Context cairo{cairo_create(mask.get())};
  const auto shape = ui::Path::roundedRect({{}, size}, extension::cornerRadius);
  render::TextEngine text;
  render::paint({.size = size, .items = {ui::FillPath{shape, ui::black}}}, text, cairo.get());
  return Region{gdk_cairo_region_create_from_surface(mask.get())};
}

}  // namespace

TileWindow::TileWindow(Way way, const Spot& spot, const std::string& title, Owner owner)
    : size_(spot.size), owner_(std::move(owner)), window_(newTileWindow()) {
  GtkWidget* widget = GTK_WIDGET(window_);
  gtk_window_set_title(window_, title.c_str());
  gtk_window_set_decorated(window_, FALSE);
  gtk_window_set_resizable(window_, FALSE);
  gtk_window_set_focus_on_map(window_, FALSE);
  gtk_widget_set_app_paintable(widget, TRUE);
  gtk_widget_set_size_request(widget, static_cast<int>(size_.width), static_cast<int>(size_.height));
  if (GdkVisual* visual = gdk_screen_get_rgba_visual(gtk_widget_get_screen(widget)))
    gtk_widget_set_visual(widget, visual);
  if (way == Way::layerShell) prepareLayerSurface(window_, spot);
  if (way == Way::x11) guard_ = prepareX11Window(window_, spot);
  if (way == Way::plain) preparePlainWindow(window_);
  connect();
  gtk_widget_realize(widget);
  if (way != Way::plain && spot.layer != Layer::normal)
    gtk_widget_input_shape_combine_region(widget, Region{cairo_region_create()}.get());
  cutToOutline();
  gtk_widget_show(widget);
}

TileWindow::~TileWindow() {
  guard_.reset();
  g_signal_handlers_disconnect_by_data(gtk_widget_get_screen(GTK_WIDGET(window_)), this);
  gtk_widget_destroy(GTK_WIDGET(window_));
}

void TileWindow::connect() {
  const auto draw = +[](GtkWidget* widget, cairo_t* cairo, TileWindow* self) -> gboolean {
    self->owner_.draw(cairo, gtk_widget_get_scale_factor(widget), self->isOpaque_);
    return TRUE;
  };
  const auto close = +[](GtkWidget*, GdkEvent*, TileWindow* self) -> gboolean {
    self->owner_.closed();
    return TRUE;
  };
  const auto compositedChanged = +[](GdkScreen*, TileWindow* self) { self->cutToOutline(); };
  g_signal_connect(window_, "draw", G_CALLBACK(draw), this);
  g_signal_connect(window_, "delete-event", G_CALLBACK(close), this);
  g_signal_connect(gtk_widget_get_screen(GTK_WIDGET(window_)), "composited-changed",
                   G_CALLBACK(compositedChanged), this);
}

void TileWindow::cutToOutline() {
  GtkWidget* widget = GTK_WIDGET(window_);
  isOpaque_ = !gdk_screen_is_composited(gtk_widget_get_screen(widget));
  gtk_widget_shape_combine_region(widget, isOpaque_ ? outline(size_).get() : nullptr);
  redraw();
}

void TileWindow::redraw() { gtk_widget_queue_draw(GTK_WIDGET(window_)); }

void TileWindow::setAccessibility(const std::vector<ui::AccessibilityElement>& elements) {
  desktop::setAccessibility(window_, elements);
}

}  // namespace desktop
