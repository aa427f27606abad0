#include "tarno/tarno-desktop/live_tile.hpp"

#include <unistd.h>

#include <algorithm>

#include "tarno/common/failure.hpp"
#include "tarno/common/output.hpp"
#include "tarno/foundation/file_descriptor.hpp"

namespace desktop {
namespace {

using namespace std::chrono_literals;

/// The minimum time between two pictures.
constexpr auto shortestInterval = 250ms;

/// The minimum time until the request for a status that turns stale. It applies if the extension, whose clock
/// may differ, says that the status should be stale by now.
constexpr auto shortestStaleWait = 1s;

/// The minimum time until the next request, even if the reload date has passed.
constexpr auto shortestReload = 5s;

/// The time until a failed request is repeated.
constexpr auto retryInterval = 30s;

}  // namespace

tarno::Date nextRequest(tarno::Date now, const std::optional<tarno::Date>& reloadDate) {
  if (!reloadDate) return now + retryInterval;
  return std::max<tarno::Date>(std::min(*reloadDate, tarno::latestDate), now + shortestReload);
}

LiveTile::LiveTile(FrameRequest request, std::function<void(const Frame&)> show)
    : request_(std::move(request)), show_(std::move(show)) {
  LiveTile::prepare();
  timeZone_.follow("/etc/localtime");
}

void LiveTile::addTo(program::EventLoop& loop) {
  for (EventSource* const source : std::initializer_list<EventSource*>{&timer_, &timeZone_, &store_, this})
    loop.add(*source);
}

void LiveTile::setScale(double scale) {
  if (std::exchange(request_.scale, scale) != scale) refresh();
}

program::EventSource::Wait LiveTile::prepare() {
  if (isNeeded_ && !process_) {
    if (Clock::now() < notBefore_) return {.until = notBefore_};
    start();
  }
  return process_ ? process_->process().wait() : Wait{};
}

void LiveTile::start() {
  isNeeded_ = false;
  notBefore_ = Clock::now() + shortestInterval;
  try {
    process_.emplace(request_);
  } catch (const std::system_error& error) {
    sayOnce(errors_, error.what());
    sleep({});
  }
}

void LiveTile::dispatch(short) {
  if (!process_ || !process_->process().hasEnded()) return;
  const auto [frame, failure, errors] = process_->finish();
  process_.reset();
  sayOnce(errors, failure);
  sleep(frame);
  if (!frame) return;
  // Changes after the process has read the store and before this watch would otherwise go unnoticed.
  if (!frame->storeFile.empty() && store_.follow(frame->storeFile)) refresh();
  if (frame->picture->scale == request_.scale)
    show_(*frame);
  else
    notBefore_ = {};  // start the frame of the right scale at once
}

void LiveTile::sayOnce(const std::string& errors, const std::string& failure) {
  if (std::exchange(errors_, errors) != errors && !errors.empty())
    tarno::writeAll(STDERR_FILENO, program::printableLines(errors) + (errors.ends_with('\n') ? "" : "\n"));
  if (std::exchange(failure_, failure) != failure && !failure.empty())
    program::complain("no new picture: " + failure);
}

void LiveTile::sleep(const std::optional<Frame>& frame) {
  const auto now = tarno::now();
  auto next = nextRequest(now, frame ? std::optional{frame->reloadDate} : std::nullopt);
  // A frozen clock never reaches the stale date.
  if (frame && frame->staleDate && !request_.at)
    next = std::min(next, std::max(*frame->staleDate, now + shortestStaleWait));
  timer_.sleepUntil(next);
}

}  // namespace desktop
