#pragma once

#include <gdk/gdk.h>

#include <functional>
#include <string>

namespace desktop {

/// Calls back when a window manager changes a property of an X11 display's root window, by which it tells all
/// programs what it did. In GTK's main loop.
class RootWatch {
 public:
  /// `display` is an X11 display.
  RootWatch(GdkDisplay* display, const char* property, std::function<void()> changed);
  ~RootWatch();
  RootWatch(const RootWatch&) = delete;
  RootWatch& operator=(const RootWatch&) = delete;

 private:
  static GdkFilterReturn filter(GdkXEvent* event, GdkEvent*, gpointer self);

  GdkWindow* root_;
  unsigned long property_;
  std::function<void()> changed_;
};

}  // namespace desktop
