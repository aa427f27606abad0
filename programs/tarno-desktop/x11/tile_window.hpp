#pragma once

#include <memory>
#include <string>

#include "tarno/tarno-desktop/options.hpp"
#include "tarno/tarno-desktop/picture.hpp"
#include "tarno/x11/connection.hpp"

namespace desktop::x11 {

/// The window that shows the tile: in no taskbar, without the focus. Clicks pass through it, except in the
/// layer "normal", where they drag it.
class TileWindow {
 public:
  /// Not on the screen yet. Window managers pass over one that is not managed. `connection` outlives it.
  TileWindow(const Connection& connection, Layer layer, bool isManaged);
  TileWindow(TileWindow&&) = delete;
  ~TileWindow() { xcb_destroy_window(connection_, id); }

  /// Fills the window. Where nothing composes windows, it is cut to the picture's outline.
  void show(std::shared_ptr<const Picture> picture, const std::string& title, bool isComposited);

  /// Puts the window to `area` of the screen, in pixels. One that was dragged only follows in size.
  void place(const Area& area);

  /// Puts the window directly above another on the root window; for none, below all.
  void stack(xcb_window_t below) const;

  /// Lets the pointer, which pressed a button here, drag the window.
  void drag(const xcb_button_press_event_t& press);

  const bool isManaged;
  const xcb_window_t id;

 private:
  void configure(int fields, const xcb_configure_window_value_list_t& values) const;

  const Connection& connection_;
  std::shared_ptr<const Picture> picture_;
  Area area_;
  bool isComposited_ = false, isDragged_ = false;
};

}  // namespace desktop::x11
