#include "tarno/tarno-desktop/host.hpp"

#include <malloc.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <utility>

#include "tarno/accessibility/accessible_tile.hpp"
#include "tarno/common/failure.hpp"
#include "tarno/tarno-desktop/live_tile.hpp"
#include "tarno/wayland/wayland_surface.hpp"
#include "tarno/x11/x11_surface.hpp"

namespace desktop {
namespace {

using namespace std::chrono_literals;

bool isSet(const char* name) {
  const char* const value = std::getenv(name);
  return value && *value;
}

sigset_t signalSet(std::initializer_list<int> signals) {
  sigset_t set;
  sigemptyset(&set);
  for (const int signal : signals) sigaddset(&set, signal);
  return set;
}

/// Those that end the program.
const auto endSignals = signalSet({SIGTERM, SIGINT, SIGHUP});

/// A descriptor for these and SIGUSR1. From now on the process dies neither of them nor of SIGPIPE: a reader
/// of standard error or a display may go away.
int takeSignals() {
  const auto taken = signalSet({SIGTERM, SIGINT, SIGHUP, SIGUSR1});
  sigprocmask(SIG_BLOCK, &taken, nullptr);
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGCHLD, SIG_DFL);  // a parent that ignores its children hands that on
  return signalfd(-1, &taken, SFD_NONBLOCK | SFD_CLOEXEC);
}

/// The tile on one connection to a display. As an event source, it waits for signals.
class Host final : program::EventSource {
 public:
  /// Starts the first frame, then connects to the display.
  explicit Host(const Options& options)
      : options_(options),
        signals_(takeSignals()),
        tile_(
            {program::siblingProgram("tarno-widget"), options.family, options.scale.value_or(1), options.at},
            [this](const Frame& frame) { show(frame); }),
        opened_(openSurface(options)) {
    loop_.add(*opened_.surface);
    loop_.add(*this);  // after the surface, whose changes it hands on, and before what they concern
    tile_.addTo(loop_);
    loop_.add(accessible_);
    loop_.beforeSleep([this] {
      if (tile_.isAtRest()) malloc_trim(0);
    });
    follow();
  }

  int run() { return loop_.run(); }

 private:
  Wait prepare() override {
    follow();
    if (opened_.surface->isClosed()) loop_.quit(EX_OK);
    return {{{signals_.get(), POLLIN, 0}}};
  }

  void dispatch(short events) override {
    signalfd_siginfo info{};
    while (events != 0 && read(signals_.get(), &info, sizeof info) == sizeof info)
      info.ssi_signo == SIGUSR1 ? tile_.refresh() : loop_.quit(EX_OK);
  }

  void follow() {
    const auto monitor = opened_.surface->monitor();
    if (!monitor) return;
    tile_.setScale(monitor->scale);
    accessible_.place(opened_.surface->extents(), monitor->scale);
  }

  void show(const Frame& frame) {
    opened_.surface->show(frame.picture, frame.title);
    accessible_.update(frame);
    if (std::exchange(isShown_, true)) return;
    const auto monitor = opened_.surface->monitor();
    const auto wanted = options_.monitor ? "the monitor " + *options_.monitor : "a monitor";
    program::complain((monitor ? "shown as " : "to be shown as ") + opened_.surface->kind() +
                      (monitor ? " on " + monitor->connector : " as soon as there is " + wanted) +
                      (opened_.reason.empty() ? "" : " (" + opened_.reason + ")"));
  }

  const Options& options_;
  program::EventLoop loop_;
  tarno::FileDescriptor signals_;
  LiveTile tile_;
  OpenedSurface opened_;
  AccessibleTile accessible_;
  bool isShown_ = false;
};

}  // namespace

OpenedSurface openSurface(const Options& options) {
  const bool hasWayland = isSet("WAYLAND_DISPLAY"), hasX11 = isSet("DISPLAY");
  if (!hasWayland && !hasX11)
    throw program::Failure{EX_UNAVAILABLE, "no display: neither WAYLAND_DISPLAY nor DISPLAY is set"};
  if (!hasWayland) return {openX11Surface(options), ""};
  try {
    if (auto surface = openWaylandSurface(options))
      return {std::move(surface), options.plainWindow ? "as asked for" : ""};
  } catch (const program::Failure& failure) {
    if (!hasX11) throw;
    return {openX11Surface(options), failure.what()};
  }
  if (hasX11) try {
      return {openX11Surface(options), "the compositor has no layer-shell"};
    } catch (const program::Failure&) {  // DISPLAY leads nowhere: as if it were not set
    }
  Options plain = options;
  plain.plainWindow = true;
  return {openWaylandSurface(plain), "the compositor has neither layer-shell nor Xwayland"};
}

int showTile(const Options& options) {
  // Compositors restart: a display that lasted this long is waited for as long when it goes away.
  constexpr auto patience = 5s;
  constexpr timespec retryInterval{0, 250'000'000};
  std::optional<program::Failure> loss;  // of a display that lasted
  program::EventSource::Clock::time_point giveUpAt;
  do {
    const auto openedAt = program::EventSource::Clock::now();
    try {
      return Host{options}.run();
    } catch (const program::Failure& failure) {
      const auto now = program::EventSource::Clock::now();
      if (now - openedAt >= patience) {
        loss = failure;
        giveUpAt = now + patience;
      } else if (now >= giveUpAt) {
        throw program::Failure{loss.value_or(failure)};
      }
    }
  } while (sigtimedwait(&endSignals, nullptr, &retryInterval) < 0);
  return EX_OK;
}

}  // namespace desktop
