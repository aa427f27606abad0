#pragma once

#include <string>
#include <vector>

#include "tarno-desktop/options.hpp"
#include "tarno-desktop/picture.hpp"
#include "tarno-desktop/placement.hpp"
#include "x11/connection.hpp"

namespace desktop::x11 {

/// What the tile's window is to the window manager.
enum class WindowKind {
  unmanaged,  ///< passed over by it (override-redirect): no frame, no focus, no taskbar, no place in the
              ///< stack
  desktop,    ///< managed, of the type that is part of the desktop
  utility,    ///< managed, a small window beside others
};

/// The window that shows the tile. Clicks pass through it, except in the layer "normal".
class TileWindow {
 public:
  /// Not on the screen yet. `connection` outlives it.
  TileWindow(const Connection& connection, WindowKind kind, Layer layer);
  ~TileWindow();
  TileWindow(const TileWindow&) = delete;
  TileWindow& operator=(const TileWindow&) = delete;

  xcb_window_t id() const { return id_; }
  WindowKind kind() const { return kind_; }
  Layer layer() const { return layer_; }

  /// Where it was asked to be, in pixels of the screen.
  const Area& area() const { return area_; }

  void setTitle(const std::string& title);

  /// Draws `picture` over the whole window, and puts the window to `area` and onto the screen. Where nothing
  /// composes windows, the window is cut to the picture's outline.
  void show(const Picture& picture, const Area& area, bool isComposited);

  /// Lets the pointer, which pressed a button here, drag the window.
  void drag(const xcb_button_press_event_t& press);

 private:
  void describe();
  void draw(const class Pixels& pixels, const Area& area);
  void place(const Area& area);

  const Connection& connection_;
  const WindowKind kind_;
  const Layer layer_;
  const xcb_window_t id_;
  const xcb_colormap_t colormap_;  // kept: window managers make frames with it
  Area area_;
};

}  // namespace desktop::x11
