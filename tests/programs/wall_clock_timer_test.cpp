#include "tarno/common/wall_clock_timer.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <cerrno>

// A test cannot set the machine's clock. In this program, linked with --wrap for both calls, the kernel tells
// of it all the same: only a timer that asked, by a read or a setting that fails.
namespace {

bool wantsToKnow = false, tellsReader = false, tellsSetter = false;

bool tells(bool& pending) {
  if (!std::exchange(pending, false)) return false;
  errno = ECANCELED;
  return true;
}

}  // namespace

// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" int __real_timerfd_settime(int timer, int flags, const itimerspec* expiry, itimerspec* old);
extern "C" int __wrap_timerfd_settime(int timer, int flags, const itimerspec* expiry, itimerspec* old) {
  wantsToKnow = (flags & TFD_TIMER_CANCEL_ON_SET) != 0;
  const int result = __real_timerfd_settime(timer, flags, expiry, old);
  return tells(tellsSetter) ? -1 : result;
}

extern "C" ssize_t __real_read(int file, void* bytes, size_t count);
extern "C" ssize_t __wrap_read(int file, void* bytes, size_t count) {
  return tells(tellsReader) ? -1 : __real_read(file, bytes, count);
}
// NOLINTEND(bugprone-reserved-identifier)

namespace {

using namespace std::chrono_literals;

struct WallClockTimer : testing::Test {
  int wakes = 0;
  program::WallClockTimer timer{[this] { ++wakes; }};

  /// Whether the timer wakes within `limit`.
  bool wakesIn(std::chrono::milliseconds limit) {
    wakes = 0;
    pollfd polled = timer.prepare().descriptors[0];
    poll(&polled, 1, static_cast<int>(limit.count()));
    timer.dispatch(polled.revents);
    return wakes == 1;
  }
};

TEST_F(WallClockTimer, WakesOnceWhenTheLastMomentItWasGivenHasCome) {
  EXPECT_FALSE(wakesIn(0ms));
  const auto moment = tarno::now() + 30ms;
  timer.sleepUntil(tarno::now());
  timer.sleepUntil(moment);
  EXPECT_FALSE(wakesIn(0ms));
  EXPECT_TRUE(wakesIn(5s));
  EXPECT_GE(tarno::now(), moment);
  EXPECT_FALSE(wakesIn(20ms));
  for (const auto past : {tarno::now(), tarno::earliestDate}) {
    timer.sleepUntil(past);
    EXPECT_TRUE(wakesIn(5s));
  }
  timer.sleepUntil(tarno::latestDate);
  EXPECT_FALSE(wakesIn(20ms));
  timer.dispatch(POLLIN);  // for no reason
  EXPECT_EQ(wakes, 0);
}

/// Waits for input on two descriptors, or for a while, then ends the loop.
struct Source final : program::EventSource {
  Wait prepare() override { return {{{-1, POLLIN, 0}, {descriptor, POLLIN, 0}}, Clock::now() + wait}; }
  void dispatch(short events) override {
    if (events != 0 || wait == 0ms) loop->quit(events);
  }
  program::EventLoop* loop = nullptr;
  std::chrono::milliseconds wait = 1h;
  int descriptor = -1;
};

TEST(EventLoop, WakesAtTheFirstDeadlineAndForEachDescriptorOfASource) {
  program::EventLoop loop;
  Source first, second, third;
  for (Source* const source : {&first, &second, &third}) {
    source->loop = &loop;
    loop.add(*source);
  }
  second.wait = 0ms;
  EXPECT_EQ(loop.run(), 0);
  second.wait = 1h;
  const tarno::FileDescriptor always{open("/dev/zero", O_RDONLY | O_CLOEXEC)};
  third.descriptor = always.get();
  EXPECT_EQ(loop.run(), POLLIN);
}

TEST_F(WallClockTimer, WakesWhenTheClockIsSet) {
  timer.sleepUntil(tarno::latestDate);
  EXPECT_TRUE(wantsToKnow);
  const itimerspec soon{{}, {0, 1}};
  __real_timerfd_settime(timer.prepare().descriptors[0].fd, 0, &soon, nullptr);
  tellsReader = true;
  EXPECT_TRUE(wakesIn(5s));
  tellsSetter = true;  // that it was set while the timer was not read
  timer.sleepUntil(tarno::latestDate);
  EXPECT_TRUE(wakesIn(5s));
}

}  // namespace
