#include "widget_font.hpp"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

#include "foundation/file_descriptor.hpp"

namespace status {
namespace {

using foundation::FileDescriptor;

std::string readAll(int descriptor) {
  std::string text;
  char buffer[4096];
  for (ssize_t count; (count = read(descriptor, buffer, sizeof buffer)) != 0;) {
    if (count > 0)
      text.append(buffer, static_cast<std::size_t>(count));
    else if (errno != EINTR)
      break;
  }
  return text;
}

/// What the program prints on both its outputs; nothing when it cannot be started.
std::optional<std::string> outputOf(const std::filesystem::path& program, std::string argument) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) return std::nullopt;
  const FileDescriptor reading{ends[0]};
  FileDescriptor writing{ends[1]};
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  for (const int output : {STDOUT_FILENO, STDERR_FILENO})
    posix_spawn_file_actions_adddup2(&actions, writing.get(), output);
  std::string name = program.filename();
  char* const arguments[] = {name.data(), argument.data(), nullptr};
  pid_t child = 0;
  const int failure = posix_spawn(&child, program.c_str(), &actions, nullptr, arguments, environ);
  posix_spawn_file_actions_destroy(&actions);
  writing = {};
  if (failure != 0) return std::nullopt;
  auto text = readAll(reading.get());
  waitpid(child, nullptr, 0);
  return text;
}

}  // namespace

std::optional<std::string> widgetFontText() {
  std::error_code unknown;
  const auto self = std::filesystem::read_symlink("/proc/self/exe", unknown);
  if (unknown) return std::nullopt;
  const auto text = outputOf(self.parent_path() / "tarno-widget", "fonts");
  if (!text) return std::nullopt;
  return text->substr(0, text->find('\n'));
}

}  // namespace status
