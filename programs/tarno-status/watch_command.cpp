#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <utility>

#include "tarno/common/event_loop.hpp"
#include "tarno/common/failure.hpp"
#include "tarno/common/output.hpp"
#include "tarno/common/path_watch.hpp"
#include "tarno/common/wall_clock_timer.hpp"
#include "tarno/foundation/file_descriptor.hpp"
#include "tarno/foundation/suite_location.hpp"
#include "tarno/shared/freshness/status_freshness.hpp"
#include "tarno/shared/persistence/mac_defaults.hpp"
#include "tarno/tarno-status/commands.hpp"
#include "tarno/tarno-status/line_format.hpp"
#include "tarno/tarno-status/shared_status.hpp"

namespace status {
namespace {

/// Returns when to look at the store again without a save: when the report turns stale, or latestDate if it
/// cannot. (The timer also wakes when the clock is set.)
tarno::Date nextLook(const std::optional<TarnoStoredMacStatus>& status) {
  if (!status || !status->receivedAt || status->snapshot.isStale()) return tarno::latestDate;
  return TarnoStatusFreshness::staleFrom(*status->receivedAt);
}

/// Returns the time since which the status has been what it is, as far as the last report tells: when it was
/// received or turned stale. If there is no date, returns `now`.
tarno::Date beginning(const std::optional<TarnoStoredMacStatus>& status, tarno::Date now) {
  if (!status || !status->receivedAt) return now;
  const auto staleFrom = TarnoStatusFreshness::staleFrom(*status->receivedAt);
  return staleFrom <= now ? staleFrom : std::min(*status->receivedAt, now);
}

/// Ends the loop when nobody reads standard output any more.
class ReaderWatch final : public program::EventSource {
 public:
  explicit ReaderWatch(program::EventLoop& loop) : loop_(loop) {}

  Wait prepare() override { return {{{program::outputDescriptor(), 0, 0}}}; }
  void dispatch(short events) override {
    if ((events & (POLLERR | POLLHUP)) != 0) loop_.quit(EX_OK);
  }

 private:
  program::EventLoop& loop_;
};

class Watcher {
 public:
  explicit Watcher(LineFormat format) : format_(std::move(format)) {}

  int run(const std::filesystem::path& file) {
    store_.follow(file);
    look();
    loop_.add(store_);
    loop_.add(timer_);
    loop_.add(reader_);
    return loop_.run();
  }

 private:
  void look() {
    const auto now = tarno::now();
    const auto [store, status, fault] = readSharedStatus(now);
    timer_.sleepUntil(nextLook(status));
    if (!fault.empty() && fault != fault_) program::complain(fault);
    fault_ = fault;
    const auto report = tileReport(status);
    if (std::exchange(status_, report.status) != report.status) since_ = beginning(status, now);
    if (auto line = format_(status, since_); line != line_) {
      line_ = std::move(line);
      print(*line_);
    }
  }

  void print(const std::string& line) {
    if (tarno::writeAll(program::outputDescriptor(), line + "\n")) return;
    if (errno != EPIPE)
      throw program::Failure{EX_IOERR,
                             std::string{"cannot write to standard output: "} + std::strerror(errno)};
    loop_.quit(EX_OK);
  }

  LineFormat format_;
  std::string fault_;                  ///< the last fault
  std::optional<std::string> status_;  ///< the last status, as a word
  tarno::Date since_;                  ///< when that status began
  std::optional<std::string> line_;    ///< the last printed line
  program::EventLoop loop_;
  program::PathWatch store_{[this] { look(); }};
  program::WallClockTimer timer_{[this] { look(); }};
  ReaderWatch reader_{loop_};
};

}  // namespace

int watch(const std::string& format) {
  Watcher watcher{lineFormat(format)};
  const auto location = tarno::suiteLocation(TarnoMacDefaults::appGroupIdentifier);
  if (!location) throw program::Failure{EX_UNAVAILABLE, readSharedStatus(tarno::now()).fault};
  std::signal(SIGPIPE, SIG_IGN);  // a reader that goes away ends the loop instead
  return watcher.run(location->file);
}

}  // namespace status
