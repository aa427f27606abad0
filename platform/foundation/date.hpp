#pragma once

#include <chrono>
#include <cstdint>
#include <functional>

namespace tarno {

/// An absolute point in time, to the microsecond: about 292,000 years either side of 1970, compared exactly.
using Date = std::chrono::sys_time<std::chrono::microseconds>;

/// A duration in seconds.
using TimeInterval = std::chrono::duration<double>;

/// The first and the last moment that is read from a text or written into one: the years 0001 to 9999 of UTC.
/// Every date that comes from outside lies in this range, so that differences never overflow.
inline constexpr Date earliestDate{std::chrono::sys_days{std::chrono::year{1} / std::chrono::January / 1}};
inline constexpr Date latestDate{std::chrono::sys_days{std::chrono::year{10000} / std::chrono::January / 1} -
                                 std::chrono::microseconds{1}};

/// The current time. The only place in the system that reads the wall clock; a ClockOverride takes its place.
/// Any thread.
Date now();

/// The whole seconds from `start` to `end`, truncated towards zero, negative when `end` lies before `start`.
/// Any two dates; beyond 292,000 years from each other it may be off by one.
std::int64_t wholeSecondsBetween(Date start, Date end);

/// `date` moved by `interval`, whose part below a microsecond is dropped. The interval must be finite and
/// short enough that the result is still a date.
Date addingTimeInterval(Date date, TimeInterval interval);

/// While one lives, now() answers what it says; the latest made wins. Meant for tests and for a program's "as
/// if it were then". Make and destroy them on one thread, in stack order, while no other thread calls now().
class ClockOverride {
 public:
  /// The clock stands still at `moment`.
  explicit ClockOverride(Date moment);
  /// Every reading of the clock calls `reading`.
  explicit ClockOverride(std::function<Date()> reading);
  ~ClockOverride();
  ClockOverride(const ClockOverride&) = delete;
  ClockOverride& operator=(const ClockOverride&) = delete;

 private:
  std::function<Date()> reading_;
  const std::function<Date()>* previous_;
};

}  // namespace tarno
