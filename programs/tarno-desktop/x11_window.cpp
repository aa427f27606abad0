#include <X11/Xatom.h>
#include <gdk/gdkx.h>

#include <algorithm>
#include <vector>

#include "tarno-desktop/root_watch.hpp"
#include "tarno-desktop/surface.hpp"

namespace desktop {
namespace {

/// The value of a property that is a list of 32-bit items; empty when it is not there.
std::vector<unsigned long> property(GdkDisplay* display, Window window, const char* name, Atom type) {
  Atom actualType = None;
  int format = 0;
  unsigned long count = 0, rest = 0;
  unsigned char* data = nullptr;
  gdk_x11_display_error_trap_push(display);  // the window may be gone by now
  XGetWindowProperty(gdk_x11_display_get_xdisplay(display), window,
                     gdk_x11_get_xatom_by_name_for_display(display, name), 0, 4096, False, type, &actualType,
                     &format, &count, &rest, &data);
  gdk_x11_display_error_trap_pop_ignored(display);
  std::vector<unsigned long> items;
  if (data != nullptr && actualType == type && format == 32) {
    const void* start = data;
    items.assign(static_cast<const unsigned long*>(start), static_cast<const unsigned long*>(start) + count);
  }
  if (data != nullptr) XFree(data);
  return items;
}

/// Keeps a desktop window above the other windows of the desktop. Window managers hold all of them below
/// everything else, but let a click raise one over another, and the desktop of a file manager covers the
/// whole screen.
class DesktopGuard {
 public:
  explicit DesktopGuard(GtkWindow* window)
      : window_(window),
        display_(gtk_widget_get_display(GTK_WIDGET(window))),
        watch_(display_, stacking, [this] { restacked(); }) {}

 private:
  static constexpr char stacking[] = "_NET_CLIENT_LIST_STACKING";

  void restacked() {
    GdkWindow* own = gtk_widget_get_window(GTK_WIDGET(window_));
    if (!own) return;
    const auto bottomToTop = property(display_, gdk_x11_get_default_root_xwindow(), stacking, XA_WINDOW);
    const auto at = std::find(bottomToTop.begin(), bottomToTop.end(), gdk_x11_window_get_xid(own));
    if (std::any_of(at, bottomToTop.end(), [&](Window other) { return isWiderDesktop(other, own); }))
      gdk_window_raise(own);
  }

  /// Whether it is of the desktop and larger than the tile: two tiles in one place must not raise each other
  /// for ever.
  bool isWiderDesktop(Window other, GdkWindow* own) const {
    const auto types = property(display_, other, "_NET_WM_WINDOW_TYPE", XA_ATOM);
    const Atom desktop = gdk_x11_get_xatom_by_name_for_display(display_, "_NET_WM_WINDOW_TYPE_DESKTOP");
    if (std::find(types.begin(), types.end(), desktop) == types.end()) return false;
    XWindowAttributes attributes{};
    gdk_x11_display_error_trap_push(display_);
    const bool isThere =
        XGetWindowAttributes(gdk_x11_display_get_xdisplay(display_), other, &attributes) != 0;
    gdk_x11_display_error_trap_pop_ignored(display_);
    const int scale = gdk_window_get_scale_factor(own);
    return isThere && attributes.width > gdk_window_get_width(own) * scale &&
           attributes.height > gdk_window_get_height(own) * scale;
  }

  GtkWindow* window_;
  GdkDisplay* display_;
  RootWatch watch_;
};

}  // namespace

std::shared_ptr<void> prepareX11Window(GtkWindow* window, const Spot& spot) {
  const auto area = place(spot.size, freeArea(spot.monitor), spot.anchor, spot.margin);
  gtk_window_move(window, area.x, area.y);
  gtk_window_set_skip_taskbar_hint(window, TRUE);
  gtk_window_set_skip_pager_hint(window, TRUE);
  gtk_window_set_accept_focus(window, FALSE);
  gtk_window_set_type_hint(
      window, spot.layer == Layer::desktop ? GDK_WINDOW_TYPE_HINT_DESKTOP : GDK_WINDOW_TYPE_HINT_UTILITY);
  if (spot.layer == Layer::normal) {
    makeDraggable(window);
    return nullptr;
  }
  gtk_window_stick(window);
  if (spot.layer == Layer::above) {
    gtk_window_set_keep_above(window, TRUE);
    return nullptr;
  }
  gtk_window_set_keep_below(window, TRUE);
  return std::make_shared<DesktopGuard>(window);
}

}  // namespace desktop
