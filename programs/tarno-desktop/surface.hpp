#pragma once

#include <gtk/gtk.h>

#include <memory>
#include <string>

#include "tarno-desktop/monitors.hpp"
#include "tarno-desktop/options.hpp"

namespace desktop {

/// The ways onto a screen.
enum class Way {
  layerShell,  ///< a surface in one of the compositor's layers
  x11,         ///< an X11 window that tells the window manager where it belongs
  plain        ///< an undecorated Wayland window, stacked and placed as the compositor likes
};

/// The best way that the session offers to show a tile in `layer`.
Way chooseWay(GdkDisplay* display, Layer layer);

/// For people: "as a surface of layer-shell's bottom layer on HDMI-1".
std::string describe(Way way, Layer layer, const Monitor& monitor);

/// Where a tile goes.
struct Spot {
  Monitor monitor;
  ui::Size size;
  ui::Alignment anchor;
  int margin = 0;
  Layer layer = Layer::desktop;
};

/// Makes `window`, which is not realised yet, a surface of the compositor at `spot`.
void prepareLayerSurface(GtkWindow* window, const Spot& spot);

/// Makes `window`, which is not realised yet, an X11 window at `spot`. For a tile on the desktop keep what
/// this returns: while it lives, no other window of the desktop (a file manager's icons, say) covers the
/// tile. It goes before `window`.
std::shared_ptr<void> prepareX11Window(GtkWindow* window, const Spot& spot);

/// Makes `window`, which is not realised yet, a Wayland window without a frame that the pointer can drag.
void preparePlainWindow(GtkWindow* window);

/// Lets a press of the pointer's first button move `window`.
void makeDraggable(GtkWindow* window);

}  // namespace desktop
