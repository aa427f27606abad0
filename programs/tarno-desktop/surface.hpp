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
  std::optional<Monitor> monitor;  ///< of the tile, with its scale; absent while the tile waits for a monitor
  Area extents;                    ///< on the screen, in pixels; at 0, 0 if unknown
  bool isClosed = false;           ///< somebody closed it
  bool needsPicture = false;       ///< it no longer has the picture, which it has to show in another window
};

/// The window or layer surface that shows the pictures of the tile on a display. It follows the monitors, the
/// panels and the window manager; without a monitor it waits for one. Its constructor throws program::Failure
/// (EX_UNAVAILABLE) if it cannot connect to the display, and dispatch() if the display disappears.
class Surface : public program::EventSource {
 public:
  /// Updated by the constructor and prepare().
  const SurfaceState& state() const { return state_; }

  /// A description for people: "a layer-shell surface in the bottom layer".
  const std::string& kind() const { return kind_; }

  /// Shows `picture` from the next prepare() on, unless it looks like the last one, and the surface needs
  /// none: then nothing is sent to the display. The first picture creates the window. A picture whose scale
  /// is not the monitor's is shown, too. Window lists show `title`.
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
  PictureLayout layout_;                    ///< of the last picture; 0 by 0 before the first
  std::shared_ptr<const Picture> picture_;  ///< null before the first, and once the surface released it
  std::string title_;

 private:
  std::size_t hash_ = 0;  ///< of the last picture
};

}  // namespace desktop
