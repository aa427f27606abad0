#pragma once

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

#include "tarno/foundation/file_descriptor.hpp"

namespace program {

/// Where a program of ours lies: beside this one.
std::filesystem::path siblingProgram(const char* name);

/// What became of a process.
struct ProcessResult {
  std::string output, errors;  ///< what it wrote to standard output and to standard error
  std::string failure;         ///< empty after exit code 0; "ended with code 3", "no answer within 10 s"
};

/// Another program while it runs, for a limited time. It gets the environment and standard input, but nothing
/// of what this program does with signals. What it writes to its outputs is kept in pipes of 1 MiB; one that
/// writes more waits until its time is over.
class ChildProcess {
 public:
  using Clock = std::chrono::steady_clock;

  /// Starts `program`; where that cannot be run, the one of its name in PATH takes its place. `inherited` is
  /// a descriptor that stays open for it. Throws std::system_error when the system has no process, memory or
  /// descriptor left.
  ChildProcess(const std::filesystem::path& program, const std::vector<std::string>& arguments,
               std::chrono::seconds limit, int inherited = -1);
  ~ChildProcess();  ///< kills it
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  /// Readable once it has ended.
  int descriptor() const { return process_.get(); }

  /// When its time is over.
  Clock::time_point deadline() const { return deadline_; }

  /// Waits until it has ended, or its time is over: then kills it. To be called once.
  ProcessResult finish();

 private:
  const std::chrono::seconds limit_;
  const Clock::time_point deadline_;
  tarno::FileDescriptor output_, errors_;
  pid_t pid_ = -1;
  tarno::FileDescriptor process_;  ///< a pidfd; none once it was waited for
};

}  // namespace program
