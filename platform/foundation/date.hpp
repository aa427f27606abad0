#pragma once

#include <chrono>
#include <cstdint>
#include <functional>

namespace tarno {

/// A point in time with a resolution of a microsecond. The range is about 292,000 years on either side of
/// 1970.
using Date = std::chrono::sys_time<std::chrono::microseconds>;

/// A duration in seconds.
using TimeInterval = std::chrono::duration<double>;

/// The first and the last date that is read from a text or written into one: the years 0001 to 9999 of UTC.
/// Every date from outside lies in this range, so that differences never overflow.
inline constexpr Date earliestDate{std::chrono::sys_days{std::chrono::year{1} / std::chrono::January / 1}};
inline constexpr Date latestDate{std::chrono::sys_days{std::chrono::year{10000} / std::chrono::January / 1} -
                                 std::chrono::microseconds{1}};

/// Returns the current time. This is the only function that reads the wall clock; a ClockOverride replaces
/// the clock. Any thread.
Date now();

/// Returns the whole seconds from `start` to `end`, truncated towards zero, negative if `end` is before
/// `start`. For dates more than 292,000 years apart the result may be off by one.
std::int64_t wholeSecondsBetween(Date start, Date end);

/// Returns `date` moved by `interval`; a part below a microsecond is dropped. The interval must be finite,
/// and the result must be in the range of Date.
Date addingTimeInterval(Date date, TimeInterval interval);

/// Replaces the clock for as long as it lives: now() returns its time. The newest override counts. It is
/// meant for tests and for `--at`. Create and destroy overrides on one thread, in stack order, while no other
/// thread calls now().
class ClockOverride {
 public:
  /// Freezes the clock at `moment`.
  explicit ClockOverride(Date moment);
  /// Calls `reading` whenever the clock is read.
  explicit ClockOverride(std::function<Date()> reading);
  ~ClockOverride();
  ClockOverride(const ClockOverride&) = delete;
  ClockOverride& operator=(const ClockOverride&) = delete;

 private:
  std::function<Date()> reading_;
  const std::function<Date()>* previous_;
};

}  // namespace tarno
