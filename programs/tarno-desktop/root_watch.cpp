#include "tarno-desktop/root_watch.hpp"

#include <gdk/gdkx.h>

namespace desktop {

RootWatch::RootWatch(GdkDisplay* display, const char* property, std::function<void()> changed)
    : root_(gdk_screen_get_root_window(gdk_display_get_default_screen(display))),
      property_(gdk_x11_get_xatom_by_name_for_display(display, property)),
      changed_(std::move(changed)) {
  gdk_window_set_events(root_,
                        static_cast<GdkEventMask>(gdk_window_get_events(root_) | GDK_PROPERTY_CHANGE_MASK));
  gdk_window_add_filter(root_, filter, this);
}

RootWatch::~RootWatch() { gdk_window_remove_filter(root_, filter, this); }

GdkFilterReturn RootWatch::filter(GdkXEvent* event, GdkEvent*, gpointer self) {
  const auto& watch = *static_cast<RootWatch*>(self);
  const auto& happened = *static_cast<const XEvent*>(event);
  if (happened.type == PropertyNotify && happened.xproperty.atom == watch.property_) watch.changed_();
  return GDK_FILTER_CONTINUE;
}

}  // namespace desktop
