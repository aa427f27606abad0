#include "tarno/common/wall_clock_timer.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <fstream>

#include "support/system_calls.hpp"

// A test cannot set the clock of the machine. These calls return the error by which the kernel reports it.
WRAP(int, timerfd_settime, (int timer, int flags, const itimerspec* expiry, itimerspec* old),
     (timer, flags, expiry, old))
WRAP(ssize_t, read, (int file, void* bytes, size_t count), (file, bytes, count))

namespace {

using namespace std::chrono_literals;

struct WallClockTimer : testing::Test {
  int wakes = 0;
  program::WallClockTimer timer{[this] { ++wakes; }};

  /// Returns whether the timer wakes within `limit`.
  bool wakesIn(std::chrono::milliseconds limit) {
    wakes = 0;
    pollfd polled = timer.prepare().descriptors[0];
    poll(&polled, 1, static_cast<int>(limit.count()));
    timer.dispatch(polled.revents);
    return wakes == 1;
  }

  /// Returns whether the kernel will tell the timer when the clock is set.
  bool isTold() {
    std::ifstream info{"/proc/self/fdinfo/" + std::to_string(timer.prepare().descriptors[0].fd)};
    const std::string text{std::istreambuf_iterator<char>{info}, {}};
    return text.find("settime flags: 03\n") != text.npos;
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
  timer.dispatch(POLLIN);  // without an event
  EXPECT_EQ(wakes, 0);
}

TEST_F(WallClockTimer, WakesWhenTheClockIsSet) {
  timer.sleepUntil(tarno::latestDate);
  EXPECT_TRUE(isTold());
  const auto isSet = [] { return ECANCELED; };
  system_calls::intercept(0, isSet);
  timer.dispatch(POLLIN);
  EXPECT_EQ(wakes, 1);
  system_calls::intercept(0, isSet);  // the clock is set before the timer is read
  timer.sleepUntil(tarno::latestDate);
  EXPECT_TRUE(wakesIn(5s));
}

/// Waits for input on two descriptors, or for a time, and then ends the loop.
struct Source final : program::EventSource {
  explicit Source(program::EventLoop& eventLoop) : loop(eventLoop) { loop.add(*this); }
  Wait prepare() override { return {{{-1, POLLIN, 0}, {descriptor, POLLIN, 0}}, Clock::now() + wait}; }
  void dispatch(short events) override {
    if (events != 0 || wait == 0ms) loop.quit(events);
  }
  program::EventLoop& loop;
  std::chrono::milliseconds wait = 1h;
  int descriptor = -1;
};

TEST(EventLoop, WakesAtTheFirstDeadlineAndForEachDescriptorOfASource) {
  program::EventLoop loop;
  Source first{loop}, second{loop}, third{loop};
  second.wait = 0ms;
  EXPECT_EQ(loop.run(), 0);
  second.wait = 1h;
  const tarno::FileDescriptor always{open("/dev/zero", O_RDONLY | O_CLOEXEC)};
  third.descriptor = always.get();
  EXPECT_EQ(loop.run(), POLLIN);
}

}  // namespace
