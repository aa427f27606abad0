#include "wayland/wayland_surface.hpp"

#include <sys/epoll.h>
#include <systemd/sd-bus.h>

#include <cerrno>
#include <system_error>

#include "wayland/tile_surface.hpp"

namespace desktop {
namespace {

using namespace wayland;
using namespace std::chrono_literals;

/// Between two surfaces, for a compositor that closes each: it may while its monitors change.
constexpr auto surfaceInterval = 200ms;

/// Whether KWin shows the desktop at the moment, as it tells on the session's bus. Never without a bus.
class ShowDesktopWatch {
 public:
  ShowDesktopWatch() {
    sd_bus* bus = nullptr;
    if (sd_bus_open_user(&bus) < 0) return;
    bus_.reset(bus, sd_bus_close_unref);
    const auto changed = [](sd_bus_message* message, void* isShown, sd_bus_error*) {
      return sd_bus_message_read(message, "b", isShown);
    };
    sd_bus_match_signal_async(bus, nullptr, "org.kde.KWin", "/KWin", "org.kde.KWin", "showingDesktopChanged",
                              changed, nullptr, &isShown_);
    isShown();  // sends that
  }

  /// To poll() for POLLIN; negative for none.
  int descriptor() const { return bus_ ? sd_bus_get_fd(bus_.get()) : -1; }

  bool isShown() {
    int processed = 1;
    while (bus_ && processed > 0) processed = sd_bus_process(bus_.get(), nullptr);
    if (processed < 0) bus_.reset();  // it went away
    return bus_ && isShown_ != 0;
  }

 private:
  std::shared_ptr<sd_bus> bus_;
  int isShown_ = 0;
};

std::string kindFor(const Options& options, bool isPlain) {
  if (isPlain) return "a plain Wayland window";
  return std::string{"a layer-shell surface in the "} + (options.layer == Layer::above ? "top" : "bottom") +
         " layer";
}

class WaylandSurface final : public Surface {
 public:
  WaylandSurface(const Options& options, bool isPlain);

  /// False without layer-shell, where the options ask for a layer.
  bool isPossible() const { return isPlain_ || display_.layers; }

  Wait prepare() override;
  void dispatch(short) override { display_.dispatch(); }

 private:
  void follow();

  const bool isPlain_;
  Display display_;
  std::optional<ShowDesktopWatch> showDesktop_;
  foundation::FileDescriptor events_;  // an epoll of both
  wl_output* output_ = nullptr;        // the monitor
  double displayScale_ = 1;            // at which the display shows the tile, in pixels per point
  std::optional<TileSurface> surface_;
  Clock::time_point notBefore_;  // the next one
};

WaylandSurface::WaylandSurface(const Options& options, bool isPlain)
    : Surface(options, kindFor(options, isPlain)), isPlain_(isPlain), events_(epoll_create1(EPOLL_CLOEXEC)) {
  epoll_event readable{.events = EPOLLIN, .data = {}};
  if (epoll_ctl(events_.get(), EPOLL_CTL_ADD, wl_display_get_fd(display_.connection.get()), &readable) != 0)
    throw std::system_error{errno, std::generic_category(), "cannot watch the display"};
  if (display_.isKWin && options.layer == Layer::desktop && !isPlain_)
    epoll_ctl(events_.get(), EPOLL_CTL_ADD, showDesktop_.emplace().descriptor(), &readable);
  if (isPlain_) choice_ = MonitorChoice{std::nullopt};  // that is up to the compositor
  follow();
}

/// Does what the compositor's events and the owner's calls have made necessary.
program::EventSource::Wait WaylandSurface::prepare() {
  follow();
  if (surface_ && !isPlain_ && (surface_->isClosed() || surface_->output() != output_)) surface_.reset();
  const bool isMissing = !surface_ && picture_ && output_;
  if (isMissing && Clock::now() >= notBefore_) {
    surface_.emplace(display_, options_, isPlain_ ? nullptr : output_);
    notBefore_ = Clock::now() + surfaceInterval;
  }
  isClosed_ = isPlain_ && surface_ && surface_->isClosed();
  if (surface_ && showDesktop_) surface_->raise(showDesktop_->isShown());
  if (surface_ && monitor_)
    surface_->show(picture_, picture_->scale * displayScale_ / monitor_->scale, title_);
  if (picture_) extents_ = {0, 0, picture_->width, picture_->height};
  wl_display_flush(display_.connection.get());
  return {events_.get(), POLLIN, isMissing ? std::optional{notBefore_} : std::nullopt};
}

/// Finds the monitor: a layer surface stays on one, a window is on the one that it came to last.
void WaylandSurface::follow() {
  monitors_.clear();
  for (const Output& output : display_.outputs) {
    if (!output.info) continue;
    monitors_.push_back(*output.info);
    if (isPlain_ && surface_ && surface_->output() == output.proxy.get())
      choice_ = MonitorChoice{output.info->connector};
  }
  output_ = nullptr;
  monitor_ = choice_.among(monitors_);
  if (!monitor_) return;
  for (const Output& output : display_.outputs)
    if (output.info && output.info->connector == monitor_->connector) output_ = output.proxy.get();
  const double preferred = surface_ ? surface_->preferredScale() : 0;
  displayScale_ = preferred > 0 ? preferred : monitor_->scale;
  monitor_->scale = options_.scale.value_or(displayScale_);
}

}  // namespace

std::unique_ptr<Surface> openWaylandSurface(const Options& options) {
  const bool isPlain = options.plainWindow || options.layer == Layer::normal;
  auto surface = std::make_unique<WaylandSurface>(options, isPlain);
  if (!surface->isPossible()) return nullptr;
  return surface;
}

}  // namespace desktop
