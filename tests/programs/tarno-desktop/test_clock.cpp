// A wall clock for tests of whole programs, to be preloaded: a clock step or a night of suspend cannot be had
// for one process, and the kernel's time namespaces leave CLOCK_REALTIME alone. It takes the place of the C
// library's calls, the lowest seam there is: clock_gettime() reads a clock that runs `rate` times as fast,
// ahead by `step`; timers set for a date wait accordingly; SIGUSR1 tells that the clock was set, as the
// kernel tells it (read() fails with ECANCELED).
//
// TARNO_TEST_CLOCK names a file with the Control that the test writes and reads.

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <ctime>

namespace {

struct Control {
  std::int64_t start;  // seconds since 1970, real
  std::int64_t rate;   // test seconds a second
  std::int64_t step;   // seconds
  std::int64_t armed;  // how often a timer was set
};

constexpr std::int64_t second = 1'000'000'000;

volatile Control* control = nullptr;
int timer = -1;
bool timerIsToldOfSetting = false;
volatile std::sig_atomic_t wasSet = 0;

std::int64_t nanoseconds(const timespec& time) { return time.tv_sec * second + time.tv_nsec; }

std::int64_t realNow() {
  timespec now{};
  syscall(SYS_clock_gettime, CLOCK_REALTIME, &now);
  return nanoseconds(now);
}

std::int64_t testNow() {
  const auto start = control->start * second;
  return start + (realNow() - start) * control->rate + control->step * second;
}

void clockWasSet(int) {
  if (!timerIsToldOfSetting) return;
  wasSet = 1;
  const itimerspec soon{{}, {0, 1}};
  syscall(SYS_timerfd_settime, timer, 0, &soon, nullptr);
}

__attribute__((constructor)) void start() {
  const char* path = std::getenv("TARNO_TEST_CLOCK");
  if (!path) return;
  void* memory =
      mmap(nullptr, sizeof(Control), PROT_READ | PROT_WRITE, MAP_SHARED, open(path, O_RDWR | O_CLOEXEC), 0);
  if (memory == MAP_FAILED) abort();
  control = static_cast<Control*>(memory);
  signal(SIGUSR1, clockWasSet);
}

}  // namespace

extern "C" {

int clock_gettime(clockid_t clock, timespec* now) noexcept {
  if (clock != CLOCK_REALTIME || !control) return static_cast<int>(syscall(SYS_clock_gettime, clock, now));
  const auto test = testNow();
  *now = {test / second, test % second};
  return 0;
}

int timerfd_settime(int descriptor, int flags, const itimerspec* expiry, itimerspec* old) noexcept {
  auto real = *expiry;
  if (control && (flags & TFD_TIMER_ABSTIME) != 0) {
    timer = descriptor;
    timerIsToldOfSetting = (flags & TFD_TIMER_CANCEL_ON_SET) != 0;
    control->armed = control->armed + 1;
    const auto end = realNow() + (nanoseconds(expiry->it_value) - testNow()) / control->rate;
    real.it_value = {end / second, end % second};
  }
  return static_cast<int>(syscall(SYS_timerfd_settime, descriptor, flags, &real, old));
}

ssize_t read(int descriptor, void* buffer, size_t size) {
  const auto count = syscall(SYS_read, descriptor, buffer, size);
  if (wasSet == 0 || descriptor != timer) return count;
  wasSet = 0;
  errno = ECANCELED;
  return -1;
}

}  // extern "C"
