#include "tarno/common/event_loop.hpp"

#include <algorithm>
#include <cerrno>
#include <system_error>

namespace program {
namespace {

using Clock = EventSource::Clock;

/// What poll() takes for a deadline: whole milliseconds, rounded up so that it does not wake too early.
int milliseconds(std::optional<Clock::time_point> until) {
  if (!until) return -1;
  constexpr auto longest = std::chrono::milliseconds{std::chrono::hours{24}};
  const auto wait = std::chrono::ceil<std::chrono::milliseconds>(*until - Clock::now());
  return static_cast<int>(std::clamp(wait, std::chrono::milliseconds{0}, longest).count());
}

}  // namespace

void EventLoop::add(EventSource& source) { sources_.push_back(&source); }

void EventLoop::remove(EventSource& source) { std::erase(sources_, &source); }

int EventLoop::run() {
  std::vector<EventSource*> asked;
  std::vector<pollfd> polled;
  while (!exitCode_) {
    asked.clear();
    polled.clear();
    std::optional<Clock::time_point> until;
    for (std::size_t i = 0; i < sources_.size(); ++i) {  // by index: what is prepared may add sources
      asked.push_back(sources_[i]);
      const auto wait = asked.back()->prepare();
      polled.push_back({wait.descriptor, wait.events, 0});
      if (wait.until && (!until || *wait.until < *until)) until = wait.until;
    }
    beforeSleep_();
    if (poll(polled.data(), polled.size(), exitCode_ ? 0 : milliseconds(until)) < 0 && errno != EINTR)
      throw std::system_error{errno, std::generic_category(), "cannot wait for events"};
    for (std::size_t i = 0; i < asked.size(); ++i)
      if (std::find(sources_.begin(), sources_.end(), asked[i]) != sources_.end())
        asked[i]->dispatch(polled[i].revents);
  }
  return *std::exchange(exitCode_, std::nullopt);
}

}  // namespace program
