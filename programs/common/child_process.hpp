#pragma once

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

#include "tarno/common/event_loop.hpp"
#include "tarno/foundation/file_descriptor.hpp"

namespace program {

/// Returns the path of the program `name` of this project. All are installed in the same folder.
std::filesystem::path siblingProgram(const char* name);

/// The result of a process.
struct ProcessResult {
  std::string output, errors;  ///< what it wrote to standard output and to standard error
  std::string failure;         ///< such as "ended with code 3" or "no answer within 10 s"; empty for code 0
};

/// Runs another program for a limited time. The program inherits the environment and standard input, but not
/// the signal handlers. It is killed when this program ends. At most 1 MiB of each of its outputs is kept; a
/// program that writes more is blocked until its time is over.
class ChildProcess {
 public:
  using Clock = EventSource::Clock;

  /// Starts `program`, or the program of the same name in PATH if `program` cannot be run. The descriptor
  /// `inherited` stays open in the child. Throws std::system_error if the system has no process, memory or
  /// descriptor left.
  ChildProcess(const std::filesystem::path& program, const std::vector<std::string>& arguments,
               std::chrono::seconds limit, int inherited = -1);
  ~ChildProcess();  ///< kills the program if it is still running
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  /// Returns what to wait for before the next call of hasEnded().
  EventSource::Wait wait() const;

  /// Reads what the program has written since. Returns whether it has ended or its time is over.
  bool hasEnded();

  /// Waits until hasEnded(), kills the program if it is still running, and returns the result. Call it once.
  ProcessResult finish();

 private:
  const std::chrono::seconds limit_;
  const Clock::time_point deadline_;
  /// An output of the program, and what was read from it.
  struct Output {
    tarno::FileDescriptor pipe;  ///< closed at its end
    std::string bytes;

    void read();
  };

  Output output_, errors_;
  pid_t pid_ = -1;
  tarno::FileDescriptor process_;  ///< a pidfd; closed once the process was waited for
};

}  // namespace program
