#pragma once

#include <optional>
#include <string>

#include "tarno/tarno-desktop/options.hpp"
#include "tarno/tarno-desktop/picture.hpp"
#include "tarno/x11/connection.hpp"

namespace desktop::x11 {

/// The window of the tile. It is in no taskbar and never has the focus. Clicks pass through it, except in the
/// layer "normal", where they drag it.
class TileWindow {
 public:
  /// Creates the window but does not show it. Window managers ignore a window that is not managed.
  /// `connection` must outlive it.
  TileWindow(const Connection& connection, Layer layer, bool isManaged);
  TileWindow(TileWindow&&) = delete;
  ~TileWindow() { xcb_destroy_window(connection_, id); }

  /// Shows a picture, which the X server keeps. Without a compositor, the window gets the shape of the
  /// picture's outline.
  void show(const Picture& picture, const std::string& title, bool isComposited);
  bool isComposited() const { return isComposited_; }

  /// Moves the window to `area` of the screen, in pixels. A window that was dragged is only resized.
  void place(const Area& area);

  /// Puts the window directly above another top-level window; without one, below all.
  void stack(xcb_window_t below) const;

  /// Starts dragging the window with the pointer, whose button was pressed on it. The window manager moves
  /// it, or follow() if that does not support such requests.
  void drag(const xcb_button_press_event_t& press, bool isMovedByManager);

  /// Moves the window to the pointer, unless the window manager does.
  void follow(const xcb_motion_notify_event_t& motion) const;

  const bool isManaged;
  const xcb_window_t id;

 private:
  void configure(int fields, const xcb_configure_window_value_list_t& values) const;

  const Connection& connection_;
  Area area_;
  std::optional<xcb_button_press_event_t> held_;  ///< if follow() moves the window: where it is held
  bool isComposited_ = false, isDragged_ = false;
};

}  // namespace desktop::x11
