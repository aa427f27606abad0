#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <thread>

#include "tarno/tarno-widget/confinement.hpp"

namespace {

using extension::FileAccess;

/// Returns whether `attempt` succeeds in a confined child process.
bool succeeds(FileAccess access, const std::function<bool()>& attempt) {
  const pid_t child = fork();
  if (child == 0) {
    extension::confine(access);
    _exit(attempt() ? 0 : 1);
  }
  int status = 0;
  return waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

TEST(Confinement, DeniesWhatDrawingDoesNotNeed) {
  const auto folder = std::filesystem::temp_directory_path() / ("confinement-" + std::to_string(getpid()));
  std::filesystem::create_directory(folder);
  const auto file = (folder / "file").string(), other = (folder / "other").string();
  std::fclose(std::fopen(file.c_str(), "w"));
  const auto opens = [&](const std::string& path, int flags) {
    return [=] { return open(path.c_str(), flags, 0600) >= 0; };
  };
  enum Allowed { never, whenWriting, always };
  const struct {
    const char* what;
    std::function<bool()> attempt;
    Allowed allowed;
  } attempts[] = {
      {"read", opens(file, O_RDONLY), always},
      {"list", opens(folder, O_RDONLY | O_DIRECTORY), always},
      {"thread", [] { return std::thread{[] {}}.join(), true; }, always},
      {"write", opens(file, O_WRONLY), whenWriting},
      {"read and write", opens(file, O_RDWR), whenWriting},
      {"empty", opens(file, O_RDONLY | O_TRUNC), whenWriting},
      {"create", opens(other, O_RDONLY | O_CREAT), whenWriting},
      {"rename", [&] { return renameat(AT_FDCWD, other.c_str(), AT_FDCWD, file.c_str()) == 0; }, whenWriting},
      {"folder", [&] { return mkdir(other.c_str(), 0700) == 0; }, whenWriting},
      {"mode", [&] { return chmod(file.c_str(), 0777) == 0; }, never},
      {"truncate", [&] { return truncate(file.c_str(), 0) == 0; }, never},
      {"symbolic link", [&] { return symlink("x", (other + "2").c_str()) == 0; }, never},
      {"memory file", [] { return memfd_create("x", 0) >= 0; }, never},
      {"network", [] { return socket(AF_INET, SOCK_STREAM, 0) >= 0; }, never},
      {"local socket", [] { return socket(AF_UNIX, SOCK_STREAM, 0) >= 0; }, never},
      {"process", [] { return fork() >= 0; }, never},
      {"program", [] { return execl("/bin/true", "true", nullptr) == 0; }, never},
      {"signal", [] { return kill(getppid(), 0) == 0; }, never},
      {"other process", [] { return ptrace(PTRACE_ATTACH, getppid(), 0, 0) == 0; }, never},
      {"privileges", [] { return prctl(PR_GET_NO_NEW_PRIVS, 0, 0, 0, 0) == 0; }, never},
  };
  for (const auto& [what, attempt, allowed] : attempts) {
    EXPECT_EQ(succeeds(FileAccess::readOnly, attempt), allowed == always) << what;
    EXPECT_EQ(succeeds(FileAccess::readWrite, attempt), allowed != never) << what;
  }
  std::filesystem::remove_all(folder);
}

}  // namespace
