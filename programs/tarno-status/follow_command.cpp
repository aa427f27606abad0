#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <optional>
#include <utility>

#include "tarno/common/failure.hpp"
#include "tarno/common/output.hpp"
#include "tarno/foundation/file_descriptor.hpp"
#include "tarno/tarno-status/commands.hpp"
#include "tarno/tarno-status/saving.hpp"

namespace status {
namespace {

using Clock = std::chrono::steady_clock;

/// The limit on reading before a save. Without it, an endless stream would keep its newest record from being
/// saved.
constexpr std::size_t mostChunks = 16;
constexpr std::size_t chunkSize = 1 << 16;
constexpr std::chrono::minutes quietAboutSkipping{1};

struct Arrival {
  std::size_t line;  ///< the first line is 1
  Record record;
  tarno::Date receivedAt;
};

bool isBlank(std::string_view line) { return line.find_first_not_of(" \t\r") == line.npos; }

/// Returns whether a write of at most PIPE_BUF bytes would succeed at once. Saving must never wait for a
/// reader.
bool canWrite(int descriptor) {
  pollfd output{descriptor, POLLOUT, 0};
  return poll(&output, 1, 0) == 1;
}

class Follower {
 public:
  explicit Follower(const SaveOptions& options) : options_(options) {}

  int run() {
    while (!hasEnded_) {
      readAvailable();
      saveNewest();
      if (Clock::now() - lastToldOfSkipping_ >= quietAboutSkipping) tellOfSkipping();
    }
    if (!isBlank(line_))
      fail(lines_ + 1, {EX_DATAERR, "the input ended in the middle of the line; nothing was saved"});
    tellOfSkipping();
    return exitCode_;
  }

 private:
  /// Waits for input, then reads what is available, up to a limit.
  void readAvailable() {
    for (std::size_t chunks = 0; chunks < mostChunks && !hasEnded_; ++chunks) {
      pollfd input{STDIN_FILENO, POLLIN, 0};
      if (poll(&input, 1, chunks == 0 ? -1 : 0) <= 0) return;
      const ssize_t count = read(STDIN_FILENO, chunk_.data(), chunk_.size());
      if (count < 0 && (errno == EINTR || errno == EAGAIN)) return;
      if (count < 0)
        fail(lines_ + 1, {EX_NOINPUT, std::string{"cannot read standard input: "} + std::strerror(errno)});
      hasEnded_ = count <= 0;
      if (count > 0) take({chunk_.data(), static_cast<std::size_t>(count)});
    }
  }

  void take(std::string_view bytes) {
    for (auto end = bytes.find('\n'); end != bytes.npos; end = bytes.find('\n')) {
      addToLine(bytes.substr(0, end));
      bytes.remove_prefix(end + 1);
      takeLine();
      line_.clear();
    }
    addToLine(bytes);
  }

  /// Appends to the current line, up to one byte more than the limit, which shows that the line is too long.
  void addToLine(std::string_view bytes) { line_ += bytes.substr(0, largestRecord + 1 - line_.size()); }

  void takeLine() {
    ++lines_;
    if (isBlank(line_)) return;
    try {
      if (line_.size() > largestRecord)
        throw program::Failure{EX_DATAERR, "longer than " + std::to_string(largestRecord) + " bytes"};
      Arrival arrival{lines_, decodeRecord(line_), tarno::now()};
      if (newest_) ++skipped_;
      newest_ = std::move(arrival);
    } catch (const program::Failure& failure) {
      fail(lines_, failure);
    }
  }

  void saveNewest() {
    if (!newest_) return;
    const auto [line, record, receivedAt] = *std::exchange(newest_, std::nullopt);
    try {
      saveReport(record.report, receivedAt, options_.mirrorKey);
    } catch (const program::Failure& failure) {
      return fail(line, failure);
    }
    if (const int output = program::outputDescriptor(); options_.acknowledges && canWrite(output))
      tarno::writeAll(output, lineText(line) + "saved\n");
    if (!record.complaint.empty() && record.complaint != complaint_) tell(lineText(line) + record.complaint);
    complaint_ = record.complaint;
  }

  void tellOfSkipping() {
    if (skipped_ == 0) return;
    tell("reports skipped because newer ones arrived: " + std::to_string(skipped_));
    skipped_ = 0;
    lastToldOfSkipping_ = Clock::now();
  }

  void fail(std::size_t line, const program::Failure& failure) {
    tell(lineText(line) + failure.what());
    if (exitCode_ == EX_OK) exitCode_ = failure.exitCode();
  }

  static void tell(const std::string& line) {
    if (canWrite(STDERR_FILENO)) program::complain(line);
  }

  static std::string lineText(std::size_t line) { return "line " + std::to_string(line) + ": "; }

  const SaveOptions& options_;
  std::string chunk_ = std::string(chunkSize, '\0');
  std::string line_;  ///< the line that is being read
  std::size_t lines_ = 0;
  std::optional<Arrival> newest_;  ///< the newest record, if it is not saved yet
  std::size_t skipped_ = 0;
  Clock::time_point lastToldOfSkipping_ = Clock::now();
  std::string complaint_;  ///< what was wrong with the last record; not printed again if it is the same
  bool hasEnded_ = false;
  int exitCode_ = EX_OK;
};

}  // namespace

int follow(const SaveOptions& options) {
  std::signal(SIGPIPE, SIG_IGN);  // reports still arrive after the readers of the outputs have gone
  return Follower{options}.run();
}

}  // namespace status
