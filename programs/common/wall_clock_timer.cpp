#include "tarno/common/wall_clock_timer.hpp"

#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <system_error>

namespace program {
namespace {

using namespace std::chrono;

/// Arms the timer for an absolute time of CLOCK_REALTIME. Returns false if the clock was set since the timer
/// was armed last; the kernel reports this here instead of waking the timer. The timer is armed in either
/// case.
bool arm(int timer, tarno::Date moment) {
  const auto sinceEpoch = std::max(moment.time_since_epoch(), microseconds{1});  // 0 would disarm
  const auto whole = duration_cast<seconds>(sinceEpoch);
  itimerspec expiry{};
  expiry.it_value.tv_sec = whole.count();
  expiry.it_value.tv_nsec = nanoseconds{sinceEpoch - whole}.count();
  return timerfd_settime(timer, TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET, &expiry, nullptr) == 0;
}

}  // namespace

WallClockTimer::WallClockTimer(std::function<void()> wake)
    : wake_(std::move(wake)), timer_(timerfd_create(CLOCK_REALTIME, TFD_NONBLOCK | TFD_CLOEXEC)) {
  if (!timer_) throw std::system_error{errno, std::generic_category(), "cannot create a timer"};
}

void WallClockTimer::sleepUntil(tarno::Date moment) {
  // The timer uses the clock of the system, while that of the program may be frozen. Only the difference
  // counts.
  const auto wait = moment - tarno::now();
  if (!arm(timer_.get(), time_point_cast<tarno::Date::duration>(system_clock::now()) + wait))
    arm(timer_.get(), tarno::Date{});
}

void WallClockTimer::dispatch(short events) {
  std::uint64_t count = 0;
  if (events == 0 || (read(timer_.get(), &count, sizeof count) < 0 && errno != ECANCELED)) return;
  wake_();
}

}  // namespace program
