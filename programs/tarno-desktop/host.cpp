#include "tarno-desktop/host.hpp"

#include <link.h>
#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <utility>

#include "common/command_line.hpp"
#include "wayland/wayland_surface.hpp"
#include "x11/x11_surface.hpp"

namespace desktop {
namespace {

using namespace std::chrono_literals;

/// A display that lasted this long is waited for as long when it goes away: compositors restart.
constexpr auto patience = 5s;
constexpr auto retryInterval = 250ms;

bool isSet(const char* name) {
  const char* const value = std::getenv(name);
  return value && *value;
}

/// Gives back what is free in the heap, and the pages of the program and its libraries that are only read:
/// those that it reads options with, connects and takes answers, which it does not need while it sleeps. What
/// is needed again comes from the page cache.
void releaseMemory() {
  malloc_trim(0);
  const auto releaseObject = [](dl_phdr_info* object, std::size_t, void*) {
    static const auto pageSize = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    for (int i = 0; i < object->dlpi_phnum; ++i) {
      const auto& segment = object->dlpi_phdr[i];
      if (segment.p_type != PT_LOAD || (segment.p_flags & PF_W) != 0) continue;
      const auto begin = object->dlpi_addr + segment.p_vaddr;
      const auto page = begin / pageSize * pageSize;
      // NOLINTNEXTLINE(performance-no-int-to-ptr): that is how an object's place is told
      madvise(reinterpret_cast<void*>(page), begin + segment.p_memsz - page, MADV_DONTNEED);
    }
    return 0;
  };
  dl_iterate_phdr(releaseObject, nullptr);
}

}  // namespace

OpenedSurface openSurface(const Options& options, const SurfaceOwner& owner) {
  const bool hasWayland = isSet("WAYLAND_DISPLAY"), hasX11 = isSet("DISPLAY");
  if (!hasWayland && !hasX11)
    throw program::Failure{EX_UNAVAILABLE, "no display: neither WAYLAND_DISPLAY nor DISPLAY is set"};
  if (!hasWayland) return {openX11Surface(options, owner), ""};
  try {
    if (auto surface = openWaylandSurface(options, owner))
      return {std::move(surface), options.plainWindow ? "that was asked for" : ""};
  } catch (const program::Failure&) {
    if (!hasX11) throw;
    return {openX11Surface(options, owner), "WAYLAND_DISPLAY leads to no compositor"};
  }
  if (hasX11) try {
      return {openX11Surface(options, owner), "the compositor has no layer-shell"};
    } catch (const program::Failure&) {  // DISPLAY leads nowhere: as if it were not set
    }
  Options plain = options;
  plain.plainWindow = true;
  return {openWaylandSurface(plain, owner), "the compositor has neither layer-shell nor Xwayland"};
}

Host::Host(const Options& options)
    : options_(options),
      signals_(watchSignals([this] { loop_.quit(EX_OK); }, [this] { tile_.refresh(); })),
      tile_({"", options.family, options.scale.value_or(1), options.at}, [this](const Frame& frame) {
        frame_ = frame;
        show();
      }) {
  open();
  loop_.add(*this);  // first: what a surface tells its owner reaches the others before they sleep
  loop_.add(*signals_);
  tile_.addTo(loop_);
}

void Host::open() {
  auto [surface, reason] = openSurface(
      options_, {[this] { followScale(); }, [this] { loop_.quit(EX_OK); }, [this] { followPlace(); }});
  surface_ = std::move(surface);
  reason_ = std::move(reason);
  isAnnounced_ = false;
  openedAt_ = Clock::now();
  followScale();
  show();
}

void Host::followScale() {
  if (const auto scale = surface_->scale()) tile_.setScale(*scale);
}

void Host::followPlace() {
  if (const auto scale = surface_->scale(); scale && accessible_)
    accessible_->place(surface_->extents(), *scale);
}

void Host::show() {
  if (!surface_ || !frame_) return;
  surface_->setTitle(frame_->title);
  surface_->show(frame_->picture);
  isBusy_ = true;
  if (accessible_) accessible_->update(*frame_);
  if (isAnnounced_) return;
  program::complain("shown " + surface_->description() + (reason_.empty() ? "" : ", because " + reason_));
  isAnnounced_ = true;
}

EventSource::Wait Host::prepare() {
  if (!surface_) return {-1, 0, retryAt_};
  const auto wait = surface_->prepare();
  if (frame_ && !accessible_) {  // after the first picture is on its way
    loop_.add(accessible_.emplace());
    accessible_->update(*frame_);
    followPlace();
  }
  if (std::exchange(isBusy_, false)) releaseMemory();
  return wait;
}

void Host::dispatch(short events) {
  try {
    if (surface_) return surface_->dispatch(events);
    if (Clock::now() >= retryAt_) open();
  } catch (const program::Failure& failure) {
    const auto now = Clock::now();
    if (surface_) {
      if (now - openedAt_ < patience) throw;
      surface_.reset();
      loss_ = failure;
      giveUpAt_ = now + patience;
    } else if (now >= giveUpAt_) {
      throw program::Failure{*loss_};
    }
    retryAt_ = now + retryInterval;
  }
}

}  // namespace desktop
