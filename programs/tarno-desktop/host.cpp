#include "tarno/tarno-desktop/host.hpp"

#include <sys/signalfd.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <thread>

#include "tarno/accessibility/accessible_tile.hpp"
#include "tarno/common/failure.hpp"
#include "tarno/tarno-desktop/live_tile.hpp"
#include "tarno/wayland/wayland_surface.hpp"
#include "tarno/x11/x11_surface.hpp"

namespace desktop {
namespace {

using namespace std::chrono_literals;

/// Sets the signal handling, and returns a descriptor for SIGUSR1. SIGINT, SIGTERM and SIGHUP end the program
/// at once, even while a display does not answer. The system then releases everything that the program holds,
/// and kills its child process.
int takeSignals() {
  sigset_t taken;
  sigemptyset(&taken);
  for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
    std::signal(signal, [](int) { _exit(EX_OK); });
    sigaddset(&taken, signal);
  }
  sigprocmask(SIG_UNBLOCK, &taken, nullptr);  // the parent may have blocked them
  std::signal(SIGPIPE, SIG_IGN);              // a reader of standard error or a display may go away
  std::signal(SIGCHLD, SIG_DFL);              // the parent may have set it to be ignored
  sigemptyset(&taken);
  sigaddset(&taken, SIGUSR1);
  sigprocmask(SIG_BLOCK, &taken, nullptr);
  return signalfd(-1, &taken, SFD_NONBLOCK | SFD_CLOEXEC);
}

/// The tile on one connection to a display. As an event source, it waits for SIGUSR1.
class Host final : program::EventSource {
 public:
  /// Starts the first frame, then connects to the display.
  explicit Host(const Options& options) : options_(options) {
    loop_.add(*opened_.surface);
    loop_.add(*this);  // after the surface and before the sources to which it passes the surface's changes on
    tile_.addTo(loop_);
    loop_.add(accessible_);
    follow();
  }

  int run() { return loop_.run(); }

 private:
  Wait prepare() override {
    follow();
    if (state_.isClosed) loop_.quit(EX_OK);
    return {{{signals_.get(), POLLIN, 0}}};
  }

  void dispatch(short events) override {
    signalfd_siginfo info{};
    while (events != 0 && read(signals_.get(), &info, sizeof info) == sizeof info) tile_.refresh();
  }

  void follow() {
    const bool wasNeeded = std::exchange(isPictureNeeded_, state_.needsPicture);
    if (state_.needsPicture && !wasNeeded) tile_.refresh();
    if (!state_.monitor) return;
    tile_.setScale(state_.monitor->scale);
    accessible_.place(state_.extents, state_.monitor->scale);
  }

  void show(const Frame& frame) {
    opened_.surface->show(frame.picture, frame.title);
    accessible_.update(frame);
    if (std::exchange(isShown_, true)) return;
    const auto& monitor = state_.monitor;
    const auto wanted = options_.monitor ? "monitor " + *options_.monitor : "a monitor";
    const auto& kind = opened_.surface->kind();
    program::complain((monitor ? "shown as " + kind + " on monitor " + monitor->connector
                               : "waiting for " + wanted + "; the tile will be shown as " + kind) +
                      (opened_.reason.empty() ? "" : " (" + opened_.reason + ")"));
  }

  const Options& options_;
  program::EventLoop loop_;
  tarno::FileDescriptor signals_{takeSignals()};
  LiveTile tile_{
      {program::siblingProgram("tarno-widget"), options_.family, options_.scale.value_or(1), options_.at},
      [this](const Frame& frame) { show(frame); }};
  OpenedSurface opened_ = openSurface(options_);
  const SurfaceState& state_ = opened_.surface->state();
  AccessibleTile accessible_;
  bool isShown_ = false, isPictureNeeded_ = false;
};

}  // namespace

OpenedSurface openSurface(const Options& options) {
  const auto isSet = [](const char* name) {
    const char* const value = std::getenv(name);
    return value && *value;
  };
  const bool hasWayland = isSet("WAYLAND_DISPLAY"), hasX11 = isSet("DISPLAY");
  if (!hasWayland && !hasX11)
    throw program::Failure{EX_UNAVAILABLE, "no display: neither WAYLAND_DISPLAY nor DISPLAY is set"};
  if (!hasWayland) return {openX11Surface(options), ""};
  try {
    if (auto surface = openWaylandSurface(options))
      return {std::move(surface), options.plainWindow ? "because of --plain-window" : ""};
  } catch (const program::Failure& failure) {
    if (!hasX11) throw;
    return {openX11Surface(options), failure.what()};
  }
  if (hasX11) try {
      return {openX11Surface(options), "the compositor has no layer-shell"};
    } catch (const program::Failure&) {  // DISPLAY cannot be used: continue as if it were not set
    }
  Options plain = options;
  plain.plainWindow = true;
  return {openWaylandSurface(plain), "the compositor has neither layer-shell nor Xwayland"};
}

int showTile(const Options& options) {
  // If a display disappears after at least this time, the program waits for it as long, because compositors
  // restart.
  constexpr auto patience = 5s;
  constexpr auto retryInterval = 250ms;
  using Clock = program::EventSource::Clock;
  std::optional<program::Failure> loss;  // why such a display disappeared
  Clock::time_point giveUpAt;
  while (true) {
    const auto openedAt = Clock::now();
    try {
      return Host{options}.run();
    } catch (const program::Failure& failure) {
      const auto now = Clock::now();
      if (failure.exitCode() != EX_UNAVAILABLE) throw;  // a restart of the compositor does not help
      if (now - openedAt >= patience) {
        loss = failure;
        giveUpAt = now + patience;
      } else if (now >= giveUpAt) {
        throw program::Failure{loss.value_or(failure)};
      }
    }
    std::this_thread::sleep_for(retryInterval);
  }
}

}  // namespace desktop
