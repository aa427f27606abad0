#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tarno-desktop/surface.hpp"
#include "ui/scene.hpp"

namespace desktop {

/// A window on the desktop that shows what its owner draws, never takes the keyboard and, but for a window
/// among other windows, lets the pointer through to what lies below it. With a transparent ground where the
/// display has one; else cut to the tile's outline.
class TileWindow {
 public:
  /// Called in the main loop. `draw` gets a context in points, the pixels a point and whether the display
  /// ignores alpha.
  struct Owner {
    std::function<void(cairo_t*, int scale, bool isOpaque)> draw;
    std::function<void()> closed;  ///< the window manager, the user or the compositor closed it
  };

  /// Shows the window. `title` is its name for people.
  TileWindow(Way way, const Spot& spot, const std::string& title, Owner owner);
  ~TileWindow();
  TileWindow(const TileWindow&) = delete;
  TileWindow& operator=(const TileWindow&) = delete;

  void redraw();
  void setAccessibility(const std::vector<ui::AccessibilityElement>& elements);

 private:
  void connect();
  void cutToOutline();

  const ui::Size size_;
  const Owner owner_;
  GtkWindow* window_;
  std::shared_ptr<void> guard_;
  bool isOpaque_ = false;
};

}  // namespace desktop
