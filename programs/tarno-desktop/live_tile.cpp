#include "tarno-desktop/live_tile.hpp"

#include <unistd.h>

#include <algorithm>
#include <utility>

#include "common/failure.hpp"
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
      timer_([this] { refresh(); }),
      timeZone_([this] { refresh(); }),
      store_([this] { refresh(); }) {
  LiveTile::prepare();
  timeZone_.follow("/etc/localtime");
}

void LiveTile::addTo(program::EventLoop& loop) {
  loop.add(timer_);
  loop.add(timeZone_);
  loop.add(store_);
  loop.add(*this);
  loop.add(process_);  // after what starts it
}

void LiveTile::setScale(double scale) {
  if (std::exchange(request_.scale, scale) != scale) refresh();
}

EventSource::Wait LiveTile::prepare() {
  if (!isNeeded_ || process_.isRunning()) return {};
  if (Clock::now() < notBefore_) return {-1, 0, notBefore_};
  isNeeded_ = false;
  notBefore_ = Clock::now() + shortestInterval;
  process_.start(request_);
  return {};
}

void LiveTile::answered(FrameAnswer answer) {
  sayOnce(answer);
  sleep(answer.frame);
  if (!answer.frame) return;
  // What changed between the process' reading of the store and the first watch would go unnoticed.
  if (const auto& file = answer.frame->storeFile; !file.empty() && store_.follow(file)) refresh();
  const bool isOutdated = answer.frame->picture->scale != request_.scale;
  if (isOutdated)
    notBefore_ = {};  // the right one comes at once
  else
    show_(*answer.frame);
}

void LiveTile::sayOnce(const FrameAnswer& answer) {
  if (std::exchange(errors_, answer.errors) != answer.errors)
    program::writeAll(STDERR_FILENO, program::printableLines(errors_));
  if (std::exchange(failure_, answer.failure) != answer.failure && !failure_.empty())
    program::complain("no new picture: " + failure_);
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
