#include "tarno-desktop/frame_process.hpp"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <system_error>
#include <vector>

namespace desktop {
namespace {

using foundation::FileDescriptor;

constexpr unsigned timeLimit = 10;    ///< in seconds
constexpr int pipeSize = 1 << 20;     ///< in bytes; of an answer, too: a longer one is never finished
constexpr int cannotBeStarted = 127;  ///< the code that a shell uses for this

FileDescriptor opened(int descriptor) {
  if (descriptor < 0) throw std::system_error{errno, std::generic_category()};
  return FileDescriptor{descriptor};
}

struct Pipe {
  FileDescriptor reader, writer;  ///< the reader does not wait
};

Pipe makePipe() {
  std::array ends{-1, -1};
  opened(pipe2(ends.data(), O_CLOEXEC)).release();
  fcntl(ends[0], F_SETFL, O_NONBLOCK);
  fcntl(ends[0], F_SETPIPE_SZ, pipeSize);  // or less, where the user has many pipes
  return {FileDescriptor{ends[0]}, FileDescriptor{ends[1]}};
}

/// What a process that has ended left in a pipe. A child of it may write for ever.
std::string readAll(const FileDescriptor& pipe) {
  std::string bytes;
  std::array<char, 4096> buffer;
  for (ssize_t size; bytes.size() < pipeSize && (size = read(pipe.get(), buffer.data(), buffer.size())) > 0;)
    bytes.append(buffer.data(), static_cast<std::size_t>(size));
  return bytes;
}

std::vector<std::string> commandLine(const FrameRequest& request, int memory) {
  std::vector<std::string> words{
      request.program,       "frame", "--family", request.family, "--scale", scaleText(request.scale), "--fd",
      std::to_string(memory)};
  if (request.at) words.insert(words.end(), {"--at", *request.at});
  return words;
}

/// In the child: becomes the extension's process, or answers as that does when it fails. Of what this program
/// does with signals nothing is handed on, and the alarm outlasts the change of the program.
[[noreturn]] void become(std::vector<std::string> command, int output, int errors, int memory) noexcept {
  dup2(output, STDOUT_FILENO);
  dup2(errors, STDERR_FILENO);
  fcntl(memory, F_SETFD, 0);  // stays open
  for (const int signal : {SIGALRM, SIGPIPE}) std::signal(signal, SIG_DFL);
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
  alarm(timeLimit);
  std::vector<char*> words;
  for (auto& word : command) words.push_back(word.data());
  words.push_back(nullptr);
  execvp(words[0], words.data());
  const auto name = std::filesystem::path{command[0]}.filename();
  execvp(name.c_str(), words.data());
  dprintf(STDOUT_FILENO, R"({"error": "%s"})", std::strerror(errno));
  _exit(cannotBeStarted);
}

std::string reasonOf(int signal) {
  return signal == SIGALRM ? "no answer within " + std::to_string(timeLimit) + " s"
                           : std::string{"ended by a signal: "} + strsignal(signal);
}

}  // namespace

FrameProcess::~FrameProcess() {
  if (process_) stop();
}

void FrameProcess::start(const FrameRequest& request) {
  try {
    spawn(request);
  } catch (const std::system_error& error) {
    completion_({{}, std::string{"cannot start a process: "} + error.what(), {}});
  }
}

/// By fork(), after which this program goes on at once: with posix_spawn() it would sleep until the child has
/// become the other program, and wake up once more for each frame.
void FrameProcess::spawn(const FrameRequest& request) {
  scale_ = request.scale;
  memory_ = opened(memfd_create("tarno-tile", MFD_CLOEXEC | MFD_ALLOW_SEALING));
  auto output = makePipe(), errors = makePipe();
  const auto command = commandLine(request, memory_.get());
  pid_ = fork();
  if (pid_ == 0) become(command, output.writer.get(), errors.writer.get(), memory_.get());
  if (pid_ < 0) throw std::system_error{errno, std::generic_category()};
  output_ = std::move(output.reader);
  errors_ = std::move(errors.reader);
  // Not through <sys/pidfd.h>, whose functions glibc 2.36 declares as C++.
  process_ = FileDescriptor{static_cast<int>(syscall(SYS_pidfd_open, pid_, 0))};
  if (process_) return;
  const std::system_error failure{errno, std::generic_category()};
  stop();
  throw failure;
}

void FrameProcess::stop() const {
  kill(pid_, SIGKILL);
  waitpid(pid_, nullptr, 0);
}

void FrameProcess::dispatch(short events) {
  if (events == 0) return;
  int status = 0;
  waitpid(pid_, &status, 0);
  process_ = {};
  completion_(answer(status));
}

FrameAnswer FrameProcess::answer(int status) {
  FrameAnswer answer{{}, {}, readAll(errors_)};
  if (!answer.errors.empty() && !answer.errors.ends_with('\n')) answer.errors += '\n';
  try {
    if (WIFSIGNALED(status)) throw std::runtime_error{reasonOf(WTERMSIG(status))};
    auto frame = readFrame(readAll(output_), std::move(memory_), scale_);
    if (WEXITSTATUS(status) == 0) answer.frame = std::move(frame);
  } catch (const std::exception& error) {
    answer.failure = error.what();
  }
  if (const int code = WEXITSTATUS(status); WIFEXITED(status) && code != 0)
    answer.failure = "ended with code " + std::to_string(code) + ": " + answer.failure;
  return answer;
}

}  // namespace desktop
