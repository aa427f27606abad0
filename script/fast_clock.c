/* Makes the wall clock of a program run TARNO_CLOCK_RATE times as fast as the system's from TARNO_CLOCK_START (seconds since
 * 1970) on. Name this library in LD_PRELOAD when you start the program. The steady clock does not change. script/soak builds
 * the library. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <stdlib.h>
#include <sys/timerfd.h>
#include <time.h>

typedef int (*GetTime)(clockid_t, struct timespec *);
typedef int (*SetTimer)(int, int, const struct itimerspec *, struct itimerspec *);

static double seconds(struct timespec time) { return (double)time.tv_sec + (double)time.tv_nsec / 1e9; }

static struct timespec time_of(double seconds) {
  return (struct timespec){(time_t)seconds, (long)((seconds - (double)(time_t)seconds) * 1e9)};
}

static double variable(const char *name) { return strtod(getenv(name), NULL); }

int clock_gettime(clockid_t clock, struct timespec *now) {
  const int result = ((GetTime)dlsym(RTLD_NEXT, "clock_gettime"))(clock, now);
  if (result != 0 || clock != CLOCK_REALTIME) return result;
  const double start = variable("TARNO_CLOCK_START");
  *now = time_of(start + (seconds(*now) - start) * variable("TARNO_CLOCK_RATE"));
  return 0;
}

int timerfd_settime(int timer, int flags, const struct itimerspec *time, struct itimerspec *old) {
  struct itimerspec real = *time;
  const double start = variable("TARNO_CLOCK_START");
  if ((flags & TFD_TIMER_ABSTIME) != 0 && seconds(real.it_value) > start)
    real.it_value = time_of(start + (seconds(real.it_value) - start) / variable("TARNO_CLOCK_RATE"));
  return ((SetTimer)dlsym(RTLD_NEXT, "timerfd_settime"))(timer, flags, &real, old);
}
