#include "tarno/common/child_process.hpp"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
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

constexpr int pipeSize = 1 << 20;
constexpr int cannotRun = 127;  ///< the exit code of a shell

/// What a system call returned, unless it failed.
int checked(long result) {
  if (result < 0) throw std::system_error{errno, std::generic_category(), "cannot start a process"};
  return static_cast<int>(result);
}

/// The end to read from, and the one to write to.
std::array<FileDescriptor, 2> makePipe() {
  std::array ends{-1, -1};
  checked(pipe2(ends.data(), O_CLOEXEC));
  fcntl(ends[0], F_SETPIPE_SZ, pipeSize);  // or less, where the user has many pipes
  return {FileDescriptor{ends[0]}, FileDescriptor{ends[1]}};
}

/// What is in a pipe, without waiting for more: a child of the process may still have it open.
std::string readAll(const FileDescriptor& pipe) {
  int size = 0;
  ioctl(pipe.get(), FIONREAD, &size);
  std::string bytes(static_cast<std::size_t>(size), '\0');
  bytes.resize(static_cast<std::size_t>(std::max<ssize_t>(0, read(pipe.get(), bytes.data(), bytes.size()))));
  return bytes;
}

/// In the child: becomes the program, or prints why not.
[[noreturn]] void become(const std::filesystem::path& program, char* const* arguments, int output, int errors,
                         int inherited) noexcept {
  dup2(output, STDOUT_FILENO);
  dup2(errors, STDERR_FILENO);
  if (inherited >= 0) fcntl(inherited, F_SETFD, 0);
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
  std::vector<char*> words{
      const_cast<char*>(program.c_str())};  // execv() takes them so, and leaves them alone
  for (const auto& argument : arguments) words.push_back(const_cast<char*>(argument.c_str()));
  words.push_back(nullptr);
  auto [output, outputEnd] = makePipe();
  auto [errors, errorsEnd] = makePipe();
  // After posix_spawn() this program would sleep until the child is another program: a wake-up more.
  pid_ = checked(fork());
  if (pid_ == 0) become(program, words.data(), outputEnd.get(), errorsEnd.get(), inherited);
  // Not through <sys/pidfd.h>, whose functions glibc 2.36 declares as C++.
  process_ = FileDescriptor{checked(syscall(SYS_pidfd_open, pid_, 0))};
  output_ = std::move(output);
  errors_ = std::move(errors);
}

ChildProcess::~ChildProcess() {
  if (!process_) return;
  kill(pid_, SIGKILL);
  waitpid(pid_, nullptr, 0);
}

ProcessResult ChildProcess::finish() {
  using std::chrono::milliseconds;
  pollfd ended{process_.get(), POLLIN, 0};
  const auto left = std::chrono::ceil<milliseconds>(deadline_ - Clock::now());
  const bool isLate = poll(&ended, 1, static_cast<int>(std::max(left, milliseconds{0}).count())) == 0;
  if (isLate) kill(pid_, SIGKILL);
  int status = 0;
  waitpid(pid_, &status, 0);
  process_ = {};
  ProcessResult result{readAll(output_), readAll(errors_), ""};
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
