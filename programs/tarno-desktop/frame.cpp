#include "tarno-desktop/frame.hpp"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <nlohmann/json.hpp>
#include <system_error>

#include "foundation/iso8601.hpp"

namespace desktop {

using foundation::FileDescriptor;
using nlohmann::json;

NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(AccessibleElement, role, label, x, y, width, height)

namespace {

constexpr std::chrono::seconds timeLimit{10};
constexpr int pipeSize = 1 << 20;  ///< of an answer, too: a longer one is never finished

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

/// What is in a pipe, without waiting for more.
std::string readAll(const FileDescriptor& pipe) {
  int size = 0;
  ioctl(pipe.get(), FIONREAD, &size);
  std::string bytes(static_cast<std::size_t>(size), '\0');
  bytes.resize(static_cast<std::size_t>(std::max<ssize_t>(0, read(pipe.get(), bytes.data(), bytes.size()))));
  return bytes;
}

/// In the child: becomes the extension's process, or answers as that does when it fails. Of what this program
/// does with signals nothing is handed on.
[[noreturn]] void become(const FrameRequest& request, int output, int errors, int memory) noexcept {
  dup2(output, STDOUT_FILENO);
  dup2(errors, STDERR_FILENO);
  fcntl(memory, F_SETFD, 0);  // stays open
  std::signal(SIGPIPE, SIG_DFL);
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
  const std::string scale = json(request.scale).dump(), descriptor = std::to_string(memory);
  const auto run = [&](const std::filesystem::path& program) {
    execlp(program.c_str(), program.c_str(), "frame", "--family", request.family.c_str(), "--scale",
           scale.c_str(), "--fd", descriptor.c_str(), request.at ? "--at" : nullptr,
           request.at ? request.at->c_str() : nullptr, nullptr);
  };
  run(request.program);
  run(request.program.filename());
  dprintf(STDOUT_FILENO, R"({"error": "%s"})", std::strerror(errno));
  _exit(127);  // as a shell does
}

foundation::Date readDate(const json& text) {
  const auto date = foundation::dateFromRFC3339(text.get<std::string>());
  if (!date) throw std::runtime_error{text.dump() + " is not a date"};
  return *date;
}

std::filesystem::path readWatch(const json& watch) {
  const std::filesystem::path folder = watch.at("folder").get<std::string>();
  if (!folder.is_absolute()) throw std::runtime_error{"the watched folder's path is not absolute"};
  return folder / watch.at("file").get<std::string>();
}

/// Whether all of the picture can be mapped, and nobody can take its memory away.
bool isSafe(const Picture& picture) {
  struct stat file {};
  const int seals = fcntl(picture.memory.get(), F_GET_SEALS);
  return picture.width > 0 && picture.height > 0 && picture.stride % 4 == 0 &&
         picture.stride / 4 >= picture.width && fstat(picture.memory.get(), &file) == 0 &&
         picture.size() <= static_cast<std::size_t>(file.st_size) && seals >= 0 &&
         (seals & F_SEAL_SHRINK) != 0;
}

Frame readFrame(const std::string& text, FileDescriptor memory, double scale) {
  const auto answer = json::parse(text, nullptr, false);
  if (!answer.is_object()) throw std::runtime_error{"the answer is no JSON object"};
  if (answer.contains("error")) throw std::runtime_error{answer["error"].get<std::string>()};
  Picture picture{std::move(memory), answer.at("width"), answer.at("height"), answer.at("stride"), scale};
  if (!isSafe(picture))
    throw std::runtime_error{"the picture is not as large as its answer says, or not sealed"};
  Frame frame{.picture = std::make_shared<Picture>(std::move(picture)),
              .title = answer.at("title"),
              .announcement = answer.at("announcement"),
              .elements = answer.at("accessibility"),
              .reloadDate = readDate(answer.at("reload_after"))};
  if (const auto& date = answer.at("stale_from"); !date.is_null()) frame.staleDate = readDate(date);
  if (const auto& watch = answer.at("watch"); !watch.is_null()) frame.storeFile = readWatch(watch);
  return frame;
}

}  // namespace

FrameProcess::FrameProcess(const FrameRequest& request)
    : scale_(request.scale), memory_(checked(memfd_create("tarno-tile", MFD_CLOEXEC | MFD_ALLOW_SEALING))) {
  auto [output, outputEnd] = makePipe();
  auto [errors, errorsEnd] = makePipe();
  // After posix_spawn() this program would sleep until the child is another program: a wake-up more per
  // frame.
  pid_ = checked(fork());
  if (pid_ == 0) become(request, outputEnd.get(), errorsEnd.get(), memory_.get());
  // Not through <sys/pidfd.h>, whose functions glibc 2.36 declares as C++.
  process_ = FileDescriptor{checked(syscall(SYS_pidfd_open, pid_, 0))};
  output_ = std::move(output);
  errors_ = std::move(errors);
  deadline_ = Clock::now() + timeLimit;
}

void FrameProcess::end() {
  if (process_) kill(pid_, SIGKILL);
  deadline_.reset();
}

FrameResult FrameProcess::finish() {
  int status = 0;
  waitpid(pid_, &status, 0);
  process_ = {};
  FrameResult result{.errors = readAll(errors_)};
  try {
    result.frame = readFrame(readAll(output_), std::move(memory_), scale_);
  } catch (const std::exception& error) {
    result.failure = error.what();
  }
  if (!deadline_)
    result.failure = "no answer within " + std::to_string(timeLimit.count()) + " s";
  else if (WIFSIGNALED(status))
    result.failure = std::string{"ended by a signal: "} + strsignal(WTERMSIG(status));
  else if (status != 0)
    result.failure = "ended with code " + std::to_string(WEXITSTATUS(status)) + ": " + result.failure;
  if (!result.failure.empty()) result.frame.reset();
  return result;
}

}  // namespace desktop
