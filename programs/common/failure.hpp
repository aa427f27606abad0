#pragma once

#include <sysexits.h>

#include <stdexcept>
#include <string>
#include <string_view>

namespace program {

/// Returns `text` made printable. If it is longer than 1000 bytes, an ellipsis replaces the middle.
std::string errorLine(std::string_view text);

/// Thrown when a program cannot do what was asked. It has one printable line for people, and the exit code
/// (sysexits.h).
class Failure : public std::runtime_error {
 public:
  Failure(int exitCode, const std::string& line) : runtime_error(errorLine(line)), exitCode_(exitCode) {}

  int exitCode() const { return exitCode_; }

 private:
  int exitCode_;
};

/// Returns the exception that is being handled as a Failure. Out of memory and errors of the system
/// (std::system_error) become EX_OSERR; any other exception becomes EX_SOFTWARE. Call it in a catch block.
Failure currentFailure();

/// Prints one line on standard error: the program's name, then errorLine(line).
void complain(const std::string& line);

}  // namespace program
