#include "tarno/common/child_process.hpp"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <system_error>
#include <utility>

namespace program {
namespace {

using tarno::FileDescriptor;

constexpr std::size_t mostKept = 1 << 20;  ///< the bytes of each output that are kept
constexpr int cannotRun = 127;             ///< the exit code that shells use for this

/// Returns the result of a system call, or throws if it failed.
int checked(long result) {
  if (result < 0) throw std::system_error{errno, std::generic_category(), "cannot start a process"};
  return static_cast<int>(result);
}

/// Returns the end to read from, which never blocks, and the end to write to.
std::array<FileDescriptor, 2> makePipe() {
  std::array ends{-1, -1};
  checked(pipe2(ends.data(), O_CLOEXEC));
  fcntl(ends[0], F_SETFL, O_NONBLOCK);
  return {FileDescriptor{ends[0]}, FileDescriptor{ends[1]}};
}

/// Runs in the child: executes the program, or prints why it cannot.
[[noreturn]] void become(const std::filesystem::path& program, char* const* arguments, int output, int errors,
                         int inherited) noexcept {
  dup2(output, STDOUT_FILENO);
  dup2(errors, STDERR_FILENO);
  if (inherited >= 0) fcntl(inherited, F_SETFD, 0);
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  for (const int signal : {SIGPIPE, SIGXFSZ}) std::signal(signal, SIG_DFL);
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
  execv(program.c_str(), arguments);
  execvp(program.filename().c_str(), arguments);
  dprintf(STDOUT_FILENO, "%s", std::strerror(errno));
  _exit(cannotRun);
}

}  // namespace

std::filesystem::path siblingProgram(const char* name) {
  return std::filesystem::read_symlink("/proc/self/exe").replace_filename(name);
}

ChildProcess::ChildProcess(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                           std::chrono::seconds limit, int inherited)
    : limit_(limit), deadline_(Clock::now() + limit) {
  std::vector<char*> words{const_cast<char*>(program.c_str())};  // execv() does not change its arguments
  for (const auto& argument : arguments) words.push_back(const_cast<char*>(argument.c_str()));
  words.push_back(nullptr);
  auto [output, outputEnd] = makePipe();
  auto [errors, errorsEnd] = makePipe();
  // posix_spawn() would sleep until the child executes the program, which costs another wake-up.
  pid_ = checked(fork());
  if (pid_ == 0) become(program, words.data(), outputEnd.get(), errorsEnd.get(), inherited);
  // glibc 2.36 declares the functions of <sys/pidfd.h> as C++, so they cannot be linked.
  process_ = FileDescriptor{checked(syscall(SYS_pidfd_open, pid_, 0))};
  output_.pipe = std::move(output);
  errors_.pipe = std::move(errors);
}

ChildProcess::~ChildProcess() {
  if (!process_) return;
  kill(pid_, SIGKILL);
  waitpid(pid_, nullptr, 0);
}

void ChildProcess::Output::read() {
  std::array<char, 16384> part{};
  while (pipe && bytes.size() < mostKept) {
    const ssize_t count = ::read(pipe.get(), part.data(), std::min(part.size(), mostKept - bytes.size()));
    if (count == 0) pipe = {};
    if (count <= 0) return;
    bytes.append(part.data(), static_cast<std::size_t>(count));
  }
}

EventSource::Wait ChildProcess::wait() const {
  EventSource::Wait wait{{{process_.get(), POLLIN, 0}}, deadline_};
  for (const auto* const output : {&output_, &errors_})
    if (output->pipe && output->bytes.size() < mostKept)
      wait.descriptors.push_back({output->pipe.get(), POLLIN, 0});
  return wait;
}

bool ChildProcess::hasEnded() {
  pollfd process{process_.get(), POLLIN, 0};
  const bool hasEnded = poll(&process, 1, 0) > 0 || Clock::now() >= deadline_;
  output_.read();  // after checking the process, so that nothing that it wrote is missed
  errors_.read();
  return hasEnded;
}

ProcessResult ChildProcess::finish() {
  using std::chrono::milliseconds;
  while (!hasEnded()) {
    auto [descriptors, until] = wait();
    const auto left = std::chrono::ceil<milliseconds>(until - Clock::now());
    poll(descriptors.data(), descriptors.size(), static_cast<int>(std::max(left, milliseconds{0}).count()));
  }
  pollfd process{process_.get(), POLLIN, 0};
  const bool isLate = poll(&process, 1, 0) == 0;
  if (isLate) kill(pid_, SIGKILL);
  int status = 0;
  waitpid(pid_, &status, 0);
  process_ = {};
  ProcessResult result{std::move(output_.bytes), std::move(errors_.bytes), ""};
  if (isLate)
    result.failure = "no answer within " + std::to_string(limit_.count()) + " s";
  else if (WIFSIGNALED(status))
    result.failure = std::string{"ended by a signal: "} + strsignal(WTERMSIG(status));
  else if (WEXITSTATUS(status) == cannotRun)
    result.failure = "cannot be run: " + result.output;
  else if (status != 0)
    result.failure = "ended with code " + std::to_string(WEXITSTATUS(status));
  return result;
}

}  // namespace program
