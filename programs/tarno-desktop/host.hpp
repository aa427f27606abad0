#pragma once

#include <memory>
#include <optional>
#include <string>

#include "accessibility/accessible_tile.hpp"
#include "common/failure.hpp"
#include "tarno-desktop/live_tile.hpp"
#include "tarno-desktop/signals.hpp"
#include "tarno-desktop/surface.hpp"

namespace desktop {

/// A surface on the best display that there is, and why it is not on a better one.
struct OpenedSurface {
  std::unique_ptr<Surface> surface;
  std::string reason;  ///< empty where it is the best
};

/// Layer-shell where a Wayland compositor has it, X11 (on Wayland: through Xwayland) else, and a plain
/// Wayland window as the last way or when the options ask for it. Throws program::Failure (EX_UNAVAILABLE)
/// without a display.
OpenedSurface openSurface(const Options& options, const SurfaceOwner& owner);

/// The tile on a display, for screen readers too, until a signal or somebody who closes it ends the program.
class Host final : private EventSource {
 public:
  /// Starts the first frame, then connects to the display. Throws program::Failure (EX_UNAVAILABLE) without
  /// one.
  explicit Host(const Options& options);

  /// Returns the program's exit code. Throws program::Failure (EX_UNAVAILABLE) when the display goes away and
  /// does not come back.
  int run() { return loop_.run(); }

 private:
  Wait prepare() override;
  void dispatch(short events) override;

  void open();
  void followScale();
  void followPlace();
  void show();

  const Options options_;
  EventLoop loop_;
  std::unique_ptr<EventSource> signals_;
  LiveTile tile_;
  std::unique_ptr<Surface> surface_;  ///< null while the display is away
  std::string reason_;                ///< why it is not on a better display
  bool isBusy_ = false;               ///< with a frame that was shown just now
  bool isAnnounced_ = false;          ///< on standard error, on this surface
  Clock::time_point openedAt_, retryAt_, giveUpAt_;
  std::optional<program::Failure> loss_;  ///< of the display, the last
  std::optional<Frame> frame_;
  std::optional<AccessibleTile> accessible_;
};

}  // namespace desktop
