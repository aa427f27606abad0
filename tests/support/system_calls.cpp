#include "support/system_calls.hpp"

#include <sys/stat.h>
#include <sys/types.h>

#include <cerrno>
#include <utility>

namespace {

int callsLeft = -1;
std::function<bool()> pending;

bool fails() {
  if (!pending || callsLeft-- > 0) return false;
  if (!std::exchange(pending, nullptr)()) return false;
  errno = EIO;
  return true;
}

}  // namespace

void system_calls::intercept(int number, std::function<bool()> event) {
  callsLeft = number;
  pending = std::move(event);
}

bool system_calls::wasReached() { return std::exchange(pending, nullptr) == nullptr; }

// The linker's option --wrap=name sends the calls of the code under test to __wrap_name.
// NOLINTBEGIN(bugprone-reserved-identifier)
#define WRAP(result, name, parameters, arguments) \
  extern "C" result __real_##name parameters;     \
  extern "C" result __wrap_##name parameters { return fails() ? -1 : __real_##name arguments; }

WRAP(int, open, (const char* path, int flags, mode_t mode), (path, flags, mode))
WRAP(int, openat, (int folder, const char* name, int flags, mode_t mode), (folder, name, flags, mode))
WRAP(int, fstat, (int file, struct stat* found), (file, found))
WRAP(int, lstat, (const char* path, struct stat* found), (path, found))
WRAP(ssize_t, read, (int file, void* bytes, size_t count), (file, bytes, count))
WRAP(ssize_t, write, (int file, const void* bytes, size_t count), (file, bytes, count))
WRAP(int, fsync, (int file), (file))
WRAP(int, flock, (int file, int operation), (file, operation))
WRAP(int, fchmod, (int file, mode_t mode), (file, mode))
WRAP(int, fchmodat, (int folder, const char* name, mode_t mode, int flags), (folder, name, mode, flags))
WRAP(int, mkdir, (const char* path, mode_t mode), (path, mode))
WRAP(int, unlinkat, (int folder, const char* name, int flags), (folder, name, flags))
WRAP(int, renameat, (int from, const char* name, int to, const char* other), (from, name, to, other))
WRAP(int, renameat2, (int from, const char* name, int to, const char* other, unsigned flags),
     (from, name, to, other, flags))
// NOLINTEND(bugprone-reserved-identifier)
