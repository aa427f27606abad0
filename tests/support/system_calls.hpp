#pragma once

#include <sys/stat.h>

#include <cerrno>
#include <functional>
#include <string>
#include <utility>

/// Comes between code and the system in a test program that is linked with --wrap for each of the calls
/// below. Include it in one source.
namespace system_calls {

inline std::string made;  ///< the names of the calls that were made, a space after each
inline int callsLeft = 0;
inline std::function<int()> pending;

/// Runs `event` before call `number`, counted from 0 from now on. When it answers with an error, such as EIO,
/// the call is not made and fails with that.
inline void intercept(int number, std::function<int()> event) {
  callsLeft = number;
  pending = std::move(event);
}

/// Whether that call was reached; nothing is intercepted any more.
inline bool wasReached() { return std::exchange(pending, nullptr) == nullptr; }

inline bool fails(const char* name) {
  made += std::string{name} + ' ';
  if (!pending || callsLeft-- > 0) return false;
  const int error = std::exchange(pending, nullptr)();
  if (error != 0) errno = error;
  return error != 0;
}

}  // namespace system_calls

// NOLINTBEGIN(bugprone-reserved-identifier)
#define WRAP(result, name, parameters, arguments)                     \
  extern "C" result __real_##name parameters;                         \
  extern "C" result __wrap_##name parameters {                        \
    return system_calls::fails(#name) ? -1 : __real_##name arguments; \
  }

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
