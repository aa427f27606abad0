#include "tarno/foundation/date.hpp"

#include <atomic>
#include <utility>

namespace tarno {
namespace {

std::atomic<const std::function<Date()>*> overridden{nullptr};

}  // namespace

Date now() {
  if (const auto* reading = overridden.load()) return (*reading)();
  return std::chrono::time_point_cast<Date::duration>(std::chrono::system_clock::now());
}

std::int64_t wholeSecondsBetween(Date start, Date end) {
  Date::rep difference = 0;
  if (__builtin_sub_overflow(end.time_since_epoch().count(), start.time_since_epoch().count(), &difference))
    return static_cast<std::int64_t>(
        TimeInterval{end.time_since_epoch() / 2 - start.time_since_epoch() / 2}.count() * 2);
  return std::chrono::duration_cast<std::chrono::seconds>(Date::duration{difference}).count();
}

Date addingTimeInterval(Date date, TimeInterval interval) {
  return date + std::chrono::duration_cast<Date::duration>(interval);
}

ClockOverride::ClockOverride(Date moment) : ClockOverride([moment] { return moment; }) {}

ClockOverride::ClockOverride(std::function<Date()> reading)
    : reading_(std::move(reading)), previous_(overridden.exchange(&reading_)) {}

ClockOverride::~ClockOverride() { overridden.store(previous_); }

}  // namespace tarno
