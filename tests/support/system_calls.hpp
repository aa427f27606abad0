#pragma once

#include <functional>

/// Comes between the code under test and the system, in a test program that is linked with --wrap for each of
/// the calls: those that open, look at, read, write, lock, rename or remove a file.
namespace system_calls {

/// Runs `event` before call `number`, counted from 0 from now on. When it answers true the call is not made
/// and fails with EIO.
void intercept(int number, std::function<bool()> event);

/// Whether call `number` was reached; nothing is intercepted any more.
bool wasReached();

}  // namespace system_calls
