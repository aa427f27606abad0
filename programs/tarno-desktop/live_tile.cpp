#include "tarno-desktop/live_tile.hpp"

#include <unistd.h>

#include <algorithm>
#include <sstream>

#include "common/command_line.hpp"
#include "common/files.hpp"
#include "common/output.hpp"
#include "widgetkit/reload_schedule.hpp"

namespace desktop {
namespace {

using namespace std::chrono_literals;

/// Between pictures when one change follows another.
constexpr auto shortestInterval = 250ms;

/// A status that should be stale by now but is not, by the extension's clock, is asked for again after this.
constexpr auto shortestStaleWait = 1s;

}  // namespace

LiveTile::LiveTile(FrameRequest request, std::function<void(const Frame&)> show)
    : request_(std::move(request)),
      show_(std::move(show)),
      process_([this](FrameAnswer answer) { answered(std::move(answer)); }),
      timer_([this] { ask(); }),
      timeZone_([this] { ask(); }),
      store_([this] { refresh(); }) {
  LiveTile::prepare();
  timeZone_.follow("/etc/localtime");
}

void LiveTile::addTo(EventLoop& loop) {
  for (EventSource* const source : std::initializer_list<EventSource*>{&timer_, &timeZone_, &store_})
    loop.add(*source);
  loop.add(*this);
  loop.add(process_);  // after what starts it
}

void LiveTile::ask() { need_ = Need::now; }

void LiveTile::refresh() { need_ = std::max(need_, Need::soon); }

void LiveTile::setScale(double scale) {
  if (scale == request_.scale) return;
  request_.scale = scale;
  ask();
}

EventSource::Wait LiveTile::prepare() {
  if (need_ == Need::none || process_.isRunning()) return {};
  if (need_ == Need::soon) {
    if (Clock::now() < notBefore_) return {-1, 0, notBefore_};
    notBefore_ = Clock::now() + shortestInterval;
  }
  need_ = Need::none;
  process_.start(request_);
  return {};
}

void LiveTile::answered(FrameAnswer answer) {
  passOn(answer.errors);
  sleep(answer.frame);
  if (!answer.frame) {
    if (answer.failure != failure_) program::complain("no new picture: " + answer.failure);
    failure_ = std::move(answer.failure);
    return;
  }
  failure_.clear();
  // What changed between the process' reading of the store and the first watch would go unnoticed.
  if (const auto& file = answer.frame->storeFile; !file.empty() && store_.follow(file)) refresh();
  const bool isOutdated = answer.frame->picture->scale != request_.scale;  // the right one is on its way
  if (!isOutdated) show_(*answer.frame);
}

void LiveTile::passOn(const std::string& errors) {
  if (errors == errors_) return;
  errors_ = errors;
  std::istringstream lines{errors};
  for (std::string line; std::getline(lines, line);)
    program::writeAll(STDERR_FILENO, program::printable(line) + "\n");
}

void LiveTile::sleep(const std::optional<Frame>& frame) {
  using widgetkit::TimelineReloadPolicy;
  const auto now = foundation::now();
  auto next = widgetkit::nextRequest(
      now, frame ? std::optional{TimelineReloadPolicy::after(frame->reloadDate)} : std::nullopt);
  // A clock that stands still never gets there.
  if (frame && frame->staleDate && !request_.at)
    next = std::min(next, std::max(*frame->staleDate, now + shortestStaleWait));
  timer_.sleepUntil(next);
}

}  // namespace desktop
