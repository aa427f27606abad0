#include "tarno-desktop/surface.hpp"

#include <gdk/gdkwayland.h>
#include <gdk/gdkx.h>
#include <gtk-layer-shell.h>

namespace desktop {
namespace {

const char* layerName(Layer layer) { return layer == Layer::desktop ? "bottom" : "top"; }

gboolean startDrag(GtkWidget* window, GdkEventButton* event, gpointer) {
  if (event->type == GDK_BUTTON_PRESS && event->button == GDK_BUTTON_PRIMARY)
    gtk_window_begin_move_drag(GTK_WINDOW(window), static_cast<int>(event->button),
                               static_cast<int>(event->x_root), static_cast<int>(event->y_root), event->time);
  return TRUE;
}

}  // namespace

Way chooseWay(GdkDisplay* display, Layer layer) {
  if (GDK_IS_X11_DISPLAY(display)) return Way::x11;
  // The layers lie below all windows or above them; among them there are only windows.
  return layer != Layer::normal && gtk_layer_is_supported() ? Way::layerShell : Way::plain;
}

std::string describe(Way way, Layer layer, const Monitor& monitor) {
  switch (way) {
    case Way::layerShell:
      return std::string{"as a surface in layer-shell's "} + layerName(layer) + " layer on " +
             monitor.connector;
    case Way::x11:
      return std::string{"as an X11 window "} +
             (layer == Layer::desktop  ? "of the desktop"
              : layer == Layer::normal ? "among others"
                                       : "above others") +
             " on " + monitor.connector;
    case Way::plain:
      return layer == Layer::normal
                 ? "as a plain Wayland window: the compositor places it"
                 : "as a plain Wayland window (there is no layer-shell): the compositor places and stacks it";
  }
  return {};
}

void prepareLayerSurface(GtkWindow* window, const Spot& spot) {
  gtk_layer_init_for_window(window);
  gtk_layer_set_namespace(window, "tarno-desktop");
  gtk_layer_set_layer(
      window, spot.layer == Layer::desktop ? GTK_LAYER_SHELL_LAYER_BOTTOM : GTK_LAYER_SHELL_LAYER_TOP);
  gtk_layer_set_monitor(window, spot.monitor.handle);
  gtk_layer_set_keyboard_mode(window, GTK_LAYER_SHELL_KEYBOARD_MODE_NONE);
  const double x = spot.anchor.horizontal.fraction, y = spot.anchor.vertical.fraction;
  const std::pair<GtkLayerShellEdge, bool> edges[] = {{GTK_LAYER_SHELL_EDGE_LEFT, x == 0},
                                                      {GTK_LAYER_SHELL_EDGE_RIGHT, x == 1},
                                                      {GTK_LAYER_SHELL_EDGE_TOP, y == 0},
                                                      {GTK_LAYER_SHELL_EDGE_BOTTOM, y == 1}};
  for (const auto& [edge, isAnchored] : edges) {
    gtk_layer_set_anchor(window, edge, isAnchored);
    if (isAnchored) gtk_layer_set_margin(window, edge, spot.margin);
  }
}

void preparePlainWindow(GtkWindow* window) {
  makeDraggable(window);
  // Said by the window itself, or some compositors put a frame around it.
  const auto keepFrameAway =
      +[](GtkWidget* widget) { gdk_wayland_window_announce_csd(gtk_widget_get_window(widget)); };
  g_signal_connect_after(window, "realize", G_CALLBACK(keepFrameAway), nullptr);
}

void makeDraggable(GtkWindow* window) {
  gtk_widget_add_events(GTK_WIDGET(window), GDK_BUTTON_PRESS_MASK);
  g_signal_connect(window, "button-press-event", G_CALLBACK(startDrag), nullptr);
}

}  // namespace desktop
