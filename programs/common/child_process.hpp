#pragma once

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

#include "tarno/common/event_loop.hpp"
#include "tarno/foundation/file_descriptor.hpp"

namespace program {

/// Returns the path of another program of ours: they are installed side by side.
std::filesystem::path siblingProgram(const char* name);

/// The result of a process.
struct ProcessResult {
  std::string output, errors;  ///< what it wrote to standard output and to standard error
  std::string failure;         ///< empty after exit code 0; "ended with code 3", "no answer within 10 s"
};

/// Runs another program for a limited time. The program inherits the environment and standard input; its
/// signal handling is the default. It is killed when this program ends. At most 1 MiB of each of its outputs
/// is kept; a program that writes more waits until its time is over.
class ChildProcess {
 public:
  using Clock = EventSource::Clock;

  /// Starts `program`; where that cannot be run, the one of its name in PATH takes its place. `inherited` is
  /// a descriptor that stays open for it. Throws std::system_error when the system has no process, memory or
  /// descriptor left.
  ChildProcess(const std::filesystem::path& program, const std::vector<std::string>& arguments,
               std::chrono::seconds limit, int inherited = -1);
  ~ChildProcess();  ///< kills it
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  /// What to wait for until hasEnded() is worth another call.
  EventSource::Wait wait() const;

  /// Reads what the program has written since. Returns whether it has ended or its time is over.
  bool hasEnded();

  /// Waits until hasEnded(), and kills the program if it still runs. Call it once.
  ProcessResult finish();

 private:
  const std::chrono::seconds limit_;
  const Clock::time_point deadline_;
  /// One of its outputs, and what was read from it.
  struct Output {
    tarno::FileDescriptor pipe;  ///< none after its end
    std::string bytes;

    void read();
  };

  Output output_, errors_;
  pid_t pid_ = -1;
  tarno::FileDescriptor process_;  ///< a pidfd; none once it was waited for
};

}  // namespace program
