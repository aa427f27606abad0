#pragma once

#include <cerrno>
#include <functional>
#include <string>
#include <utility>

/// Intercepts system calls of a test program. For each call, the program has a WRAP() and is linked with
/// --wrap. Include this in one source file only.
namespace system_calls {

inline std::string made;  ///< the names of the calls so far, each followed by a space
inline int callsLeft = 0;
inline std::function<int()> pending;

/// Runs `event` before call `number`, counted from 0 from now on. If it returns an error, such as EIO, the
/// call is not made and fails with that error.
inline void intercept(int number, std::function<int()> event) {
  callsLeft = number;
  pending = std::move(event);
}

/// Returns whether the call of intercept() was reached, and stops intercepting.
inline bool wasReached() { return std::exchange(pending, nullptr) == nullptr; }

inline bool fails(const char* name) {
  made += std::string{name} + ' ';
  if (!pending || callsLeft-- > 0) return false;
  const int error = std::exchange(pending, nullptr)();
  if (error != 0) errno = error;
  return error != 0;
}

}  // namespace system_calls

#define WRAP(result, name, parameters, arguments)                   \
  extern "C" result real_##name parameters asm("__real_" #name);    \
  extern "C" result wrapped_##name parameters asm("__wrap_" #name); \
  extern "C" result wrapped_##name parameters {                     \
    return system_calls::fails(#name) ? -1 : real_##name arguments; \
  }
