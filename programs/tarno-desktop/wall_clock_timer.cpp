#include "tarno-desktop/wall_clock_timer.hpp"

#include <glib-unix.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <system_error>

namespace desktop {
namespace {

using namespace std::chrono;

/// Arms the timer for an absolute time of CLOCK_REALTIME. False when the clock was set since it was armed
/// last, which the kernel then reports here and not by waking the timer; it is armed all the same.
bool arm(int descriptor, foundation::Date moment) {
  const auto sinceEpoch =
      std::max(moment.time_since_epoch(), foundation::Date::duration{1});  // 0 would disarm
  const auto whole = duration_cast<seconds>(sinceEpoch);
  itimerspec expiry{};
  expiry.it_value.tv_sec = whole.count();
  expiry.it_value.tv_nsec = nanoseconds{sinceEpoch - whole}.count();
  return timerfd_settime(descriptor, TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET, &expiry, nullptr) == 0;
}

}  // namespace

WallClockTimer::WallClockTimer(std::function<void()> wake)
    : wake_(std::move(wake)), descriptor_(timerfd_create(CLOCK_REALTIME, TFD_NONBLOCK | TFD_CLOEXEC)) {
  if (descriptor_ < 0) throw std::system_error{errno, std::generic_category(), "no timer"};
  const auto onReady = [](int, GIOCondition, gpointer self) -> gboolean {
    static_cast<WallClockTimer*>(self)->expired();
    return G_SOURCE_CONTINUE;
  };
  source_ = g_unix_fd_add(descriptor_, G_IO_IN, onReady, this);
}

WallClockTimer::~WallClockTimer() {
  g_source_remove(source_);
  close(descriptor_);
}

void WallClockTimer::sleepUntil(foundation::Date moment) {
  // The program's clock may stand still or run elsewhere, the timer runs on the system's: what counts is the
  // distance.
  const auto wait = moment - foundation::now();
  if (!arm(descriptor_, time_point_cast<foundation::Date::duration>(system_clock::now()) + wait))
    arm(descriptor_, foundation::Date{});
}

void WallClockTimer::expired() {
  std::uint64_t count = 0;
  const auto read = ::read(descriptor_, &count, sizeof count);
  if (read < 0 && errno != ECANCELED) return;  // not due after all
  wake_();
}

}  // namespace desktop
