#include "wayland/wayland_surface.hpp"

#include <sys/epoll.h>
#include <systemd/sd-bus.h>

#include <cerrno>
#include <system_error>
#include <utility>

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

class WaylandSurface final : public Surface {
 public:
  WaylandSurface(const Options& options, SurfaceOwner owner);

  /// False without layer-shell, where the options ask for a layer.
  bool isPossible() const { return isPlain_ || display_.layers; }

  Wait prepare() override;
  void dispatch(short) override { display_.dispatch(); }
  std::optional<double> scale() const override;
  void show(std::shared_ptr<const Picture> picture) override { picture_ = std::move(picture); }
  void setTitle(const std::string& title) override { title_ = title; }
  Area extents() const override;
  std::string description() const override;
  std::vector<MonitorInfo> monitors() const override;

 private:
  const Output* output() const;
  std::optional<double> outputScale() const;
  void makeSurface();

  const Options options_;
  const SurfaceOwner owner_;
  const bool isPlain_;
  Display display_;
  std::optional<ShowDesktopWatch> showDesktop_;
  foundation::FileDescriptor events_;  // an epoll of both
  std::string title_;
  std::shared_ptr<const Picture> picture_;
  std::optional<TileSurface> surface_;
  Clock::time_point notBefore_;  // the next one
  bool wasThere_ = false;        // the monitor that the options name
  std::optional<double> toldScale_;
  Area toldExtents_;
};

WaylandSurface::WaylandSurface(const Options& options, SurfaceOwner owner)
    : options_(options),
      owner_(std::move(owner)),
      isPlain_(options.plainWindow || options.layer == Layer::normal),
      events_(epoll_create1(EPOLL_CLOEXEC)),
      toldScale_(scale()) {
  epoll_event readable{.events = EPOLLIN, .data = {}};
  if (epoll_ctl(events_.get(), EPOLL_CTL_ADD, wl_display_get_fd(display_.connection.get()), &readable) != 0)
    throw std::system_error{errno, std::generic_category(), "cannot watch the display"};
  if (display_.isKWin && options.layer == Layer::desktop && !isPlain_)
    epoll_ctl(events_.get(), EPOLL_CTL_ADD, showDesktop_.emplace().descriptor(), &readable);
}

/// Does what the compositor's events and the owner's calls have made necessary.
EventSource::Wait WaylandSurface::prepare() {
  makeSurface();
  if (surface_ && showDesktop_) surface_->raise(showDesktop_->isShown());
  if (const auto at = outputScale(); surface_ && at)
    surface_->show(picture_, picture_->scale * *at / options_.scale.value_or(*at), title_);
  if (surface_ && isPlain_ && surface_->isClosed()) owner_.closed();
  const auto told = std::exchange(toldScale_, scale());
  if (told != toldScale_) owner_.scaleChanged();
  const auto toldExtents = std::exchange(toldExtents_, extents());
  if (toldExtents != toldExtents_) owner_.moved();
  wl_display_flush(display_.connection.get());
  const bool isDue = !surface_ && picture_ && output();
  return {events_.get(), POLLIN, isDue ? std::optional{notBefore_} : std::nullopt};
}

/// A layer surface stays on its monitor and goes with it.
void WaylandSurface::makeSurface() {
  const Output* const at = output();
  wasThere_ = wasThere_ || at;
  if (surface_ && !isPlain_ && (surface_->isClosed() || !at || surface_->output() != at->proxy.get()))
    surface_.reset();
  if (surface_ || !picture_ || !at || Clock::now() < notBefore_) return;
  surface_.emplace(display_, options_, isPlain_ ? nullptr : at->proxy.get());
  notBefore_ = Clock::now() + surfaceInterval;
}

/// Where the tile belongs. A monitor that is named but absent is waited for; while one that was there is
/// away, the first stands in.
const Output* WaylandSurface::output() const {
  const Output* first = nullptr;
  for (const Output& output : display_.outputs) {
    if (!output.info) continue;
    if (isPlain_ ? surface_ && surface_->output() == output.proxy.get()
                 : output.info->connector == options_.monitor)
      return &output;
    if (!first) first = &output;
  }
  return isPlain_ || !options_.monitor || wasThere_ ? first : nullptr;
}

std::optional<double> WaylandSurface::outputScale() const {
  if (surface_ && surface_->preferredScale() > 0) return surface_->preferredScale();
  const Output* const at = output();
  return at ? std::optional{at->info->scale} : std::nullopt;
}

std::optional<double> WaylandSurface::scale() const {
  const auto scale = outputScale();
  return scale && options_.scale ? options_.scale : scale;
}

/// Compositors do not tell where a surface is.
Area WaylandSurface::extents() const {
  return picture_ ? Area{0, 0, picture_->width, picture_->height} : Area{};
}

std::string WaylandSurface::description() const {
  if (isPlain_) return "as a plain Wayland window, which the compositor places";
  const auto layer = std::string{"as a layer-shell surface in the "} +
                     (options_.layer == Layer::above ? "top" : "bottom") + " layer";
  if (const Output* const at = output()) return layer + " on " + at->info->connector;
  return layer + " as soon as there is " +
         (options_.monitor ? "the monitor " + *options_.monitor : "a monitor");
}

std::vector<MonitorInfo> WaylandSurface::monitors() const {
  std::vector<MonitorInfo> known;
  for (const Output& output : display_.outputs)
    if (output.info) known.push_back(*output.info);
  return known;
}

}  // namespace

std::unique_ptr<Surface> openWaylandSurface(const Options& options, SurfaceOwner owner) {
  auto surface = std::make_unique<WaylandSurface>(options, std::move(owner));
  if (!surface->isPossible()) return nullptr;
  return surface;
}

}  // namespace desktop
