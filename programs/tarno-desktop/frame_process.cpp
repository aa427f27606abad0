#include "tarno-desktop/frame_process.hpp"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <vector>

namespace desktop {
namespace {

using foundation::FileDescriptor;

constexpr std::chrono::seconds timeLimit{10};
constexpr int memoryNumber = 3;  ///< the descriptor's number in the process

constexpr int pipeSize = 1 << 20;  ///< of an answer, too: a longer one is never finished

/// A pipe's end to read from without waiting, and the one to write to.
std::pair<FileDescriptor, FileDescriptor> makePipe() {
  int ends[2] = {-1, -1};
  if (pipe2(ends, O_CLOEXEC) == 0) {
    fcntl(ends[0], F_SETFL, O_NONBLOCK);
    fcntl(ends[0], F_SETPIPE_SZ, pipeSize);  // or less, where the user has many pipes
  }
  return {FileDescriptor{ends[0]}, FileDescriptor{ends[1]}};
}

/// What a process that has ended left in a pipe. A child of it may write for ever.
std::string readAll(const FileDescriptor& pipe) {
  std::string bytes;
  char buffer[4096];
  for (ssize_t size; bytes.size() < pipeSize && (size = read(pipe.get(), buffer, sizeof buffer)) > 0;)
    bytes.append(buffer, static_cast<std::size_t>(size));
  return bytes;
}

/// Looked for each time: it may be missing while it is replaced by a newer one.
std::string programFor(const FrameRequest& request) {
  if (!request.program.empty()) return request.program;
  std::error_code unknown;
  const auto own = std::filesystem::read_symlink("/proc/self/exe", unknown);
  const auto beside = own.parent_path() / "tarno-widget";
  return access(beside.c_str(), X_OK) == 0 ? beside.string() : beside.filename().string();
}

std::vector<std::string> commandLine(const FrameRequest& request) {
  std::vector<std::string> words{programFor(request),
                                 "frame",
                                 "--family",
                                 request.family,
                                 "--scale",
                                 scaleText(request.scale),
                                 "--fd",
                                 std::to_string(memoryNumber)};
  if (request.at) words.insert(words.end(), {"--at", *request.at});
  return words;
}

}  // namespace

FrameProcess::FrameProcess(std::function<void(FrameAnswer)> completion)
    : completion_(std::move(completion)) {}

FrameProcess::~FrameProcess() {
  if (process_) kill(pid_, SIGKILL);
}

void FrameProcess::start(const FrameRequest& request) {
  scale_ = request.scale;
  deadline_ = Clock::now() + timeLimit;
  auto command = commandLine(request);
  if (const int error = spawn(command))
    completion_({{}, "cannot start " + command.front() + ": " + std::strerror(error), {}});
}

/// 0, or the number of the error.
int FrameProcess::spawn(std::vector<std::string>& command) {
  memory_ = FileDescriptor{memfd_create("tarno-tile", MFD_CLOEXEC | MFD_ALLOW_SEALING)};
  auto [output, outputEnd] = makePipe();
  auto [errors, errorsEnd] = makePipe();
  if (!memory_ || !output || !errors) return errno;

  std::vector<char*> arguments(command.size() + 1, nullptr);
  std::transform(command.begin(), command.end(), arguments.begin(),
                 [](std::string& word) { return word.data(); });

  posix_spawn_file_actions_t descriptors;
  posix_spawn_file_actions_init(&descriptors);
  posix_spawn_file_actions_adddup2(&descriptors, outputEnd.get(), STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&descriptors, errorsEnd.get(), STDERR_FILENO);
  posix_spawn_file_actions_adddup2(&descriptors, memory_.get(), memoryNumber);
  // Of what this program does with signals, nothing is handed on.
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
  sigset_t signals;
  sigemptyset(&signals);
  posix_spawnattr_setsigmask(&attributes, &signals);
  sigaddset(&signals, SIGPIPE);
  posix_spawnattr_setsigdefault(&attributes, &signals);
  const int error =
      posix_spawnp(&pid_, arguments.front(), &descriptors, &attributes, arguments.data(), environ);
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&descriptors);
  if (error != 0) return error;
  output_ = std::move(output);
  errors_ = std::move(errors);
  // Not through <sys/pidfd.h>, whose functions glibc 2.36 declares as C++.
  process_ = FileDescriptor{static_cast<int>(syscall(SYS_pidfd_open, pid_, 0))};
  if (process_) return 0;
  const int withoutDescriptor = errno;
  kill(pid_, SIGKILL);
  waitpid(pid_, nullptr, 0);
  return withoutDescriptor;
}

EventSource::Wait FrameProcess::prepare() {
  return process_ ? Wait{process_.get(), POLLIN, deadline_} : Wait{};
}

void FrameProcess::dispatch(short events) {
  if (!process_) return;
  if (deadline_ && Clock::now() >= *deadline_) {
    kill(pid_, SIGKILL);
    deadline_.reset();
  }
  if (events == 0) return;
  int status = 0;
  waitpid(pid_, &status, 0);
  process_ = {};
  completion_(answer(status));
}

FrameAnswer FrameProcess::answer(int status) {
  FrameAnswer answer{{}, {}, readAll(errors_)};
  if (!deadline_) {
    answer.failure = "no answer within " + std::to_string(timeLimit.count()) + " s";
  } else if (WIFSIGNALED(status)) {
    answer.failure = std::string{"ended by a signal: "} + strsignal(WTERMSIG(status));
  } else {
    try {
      auto frame = readFrame(readAll(output_), std::move(memory_), scale_);
      if (WEXITSTATUS(status) == 0) answer.frame = std::move(frame);
    } catch (const std::runtime_error& error) {
      answer.failure = error.what();
    }
    if (const int code = WEXITSTATUS(status); code != 0)
      answer.failure =
          "ended with code " + std::to_string(code) + (answer.failure.empty() ? "" : ": ") + answer.failure;
  }
  return answer;
}

}  // namespace desktop
