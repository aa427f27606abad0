#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tarno/common/event_loop.hpp"
#include "tarno/tarno-desktop/options.hpp"
#include "tarno/tarno-desktop/picture.hpp"

namespace desktop {

/// The state of a surface.
struct SurfaceState {
  std::vector<Monitor> monitors;   ///< in the display's order
  std::optional<Monitor> monitor;  ///< the monitor of the tile; absent while the tile waits for one
  Area extents;                    ///< its position on the screen and its size, in pixels; at 0, 0 if unknown
  bool isClosed = false;           ///< whether somebody closed it
  bool needsPicture = false;       ///< whether it has released the picture but must show it in a new window
};

/// The window or layer surface that shows the pictures of the tile on a display. It follows the monitors, the
/// panels and the window manager; without a monitor it waits for one. Its constructor throws program::Failure
/// (EX_UNAVAILABLE) if it cannot connect to the display, and dispatch() if the display disappears.
class Surface : public program::EventSource {
 public:
  /// Returns the state, which the constructor and prepare() update.
  const SurfaceState& state() const { return state_; }

  /// Returns a description for people, such as "a layer-shell surface in the bottom layer".
  const std::string& kind() const { return kind_; }

  /// Shows `picture` from the next prepare() on. Sends nothing to the display if it looks like the last one
  /// and the surface still has that. The first picture creates the window. Also shows a picture that has
  /// another scale than the monitor. `title` is the title of the window.
  void show(std::shared_ptr<const Picture> picture, const std::string& title) {
    title_ = title;
    const auto hash = picture->hash();
    if (layout_ == *picture && hash_ == hash && !state_.needsPicture) return;
    layout_ = *picture;
    hash_ = hash;
    picture_ = std::move(picture);
    state_.needsPicture = false;
  }

 protected:
  Surface(const Options& options, std::string kind)
      : options_(options), kind_(std::move(kind)), choice_(options.monitor) {}

  const Options options_;
  const std::string kind_;
  MonitorChoice choice_;
  SurfaceState state_;
  PictureLayout layout_;                    ///< the layout of the last picture; 0 by 0 before the first
  std::shared_ptr<const Picture> picture_;  ///< the last picture; null before the first and once released
  std::string title_;

 private:
  std::size_t hash_ = 0;  ///< the hash of the last picture
};

}  // namespace desktop
