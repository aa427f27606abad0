#include "tarno/common/event_loop.hpp"

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

namespace program {
namespace {

using Clock = EventSource::Clock;

/// Returns the timeout for poll(): whole milliseconds, rounded up so that it does not wake too early.
int milliseconds(Clock::time_point until) {
  if (until == Clock::time_point::max()) return -1;
  constexpr auto longest = std::chrono::milliseconds{std::chrono::hours{24}};
  const auto wait = std::chrono::ceil<std::chrono::milliseconds>(until - Clock::now());
  return static_cast<int>(std::clamp(wait, std::chrono::milliseconds{0}, longest).count());
}

}  // namespace

int EventLoop::run() {
  std::vector<pollfd> polled;
  std::vector<std::size_t> counts;  // the number of descriptors of each source
  while (!exitCode_) {
    polled.clear();
    counts.clear();
    auto until = Clock::time_point::max();
    for (auto* const source : sources_) {
      const auto wait = source->prepare();
      polled.insert(polled.end(), wait.descriptors.begin(), wait.descriptors.end());
      counts.push_back(wait.descriptors.size());
      until = std::min(until, wait.until);
    }
    if (poll(polled.data(), polled.size(), exitCode_ ? 0 : milliseconds(until)) < 0 && errno != EINTR)
      throw std::system_error{errno, std::generic_category(), "cannot wait for events"};
    auto next = polled.cbegin();
    for (std::size_t i = 0; i < counts.size(); ++i) {
      short events = 0;
      for (const auto end = next + static_cast<std::ptrdiff_t>(counts[i]); next != end; ++next)
        events = static_cast<short>(events | next->revents);
      sources_[i]->dispatch(events);
    }
  }
  return *std::exchange(exitCode_, std::nullopt);
}

}  // namespace program
