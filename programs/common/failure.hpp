#pragma once

#include <sysexits.h>

#include <stdexcept>
#include <string>
#include <string_view>

namespace program {

/// `text` made printable; in more than 1000 bytes an ellipsis takes the place of the middle.
std::string errorLine(std::string_view text);

/// Why a program cannot do what was asked: one printable line for people, and the code that the program ends
/// with (sysexits.h).
class Failure : public std::runtime_error {
 public:
  Failure(int exitCode, const std::string& line) : runtime_error(errorLine(line)), exitCode_(exitCode) {}

  int exitCode() const { return exitCode_; }

 private:
  int exitCode_;
};

/// The exception being handled, as a Failure: a Failure as it is, out of memory and what the system refused
/// (std::system_error) as EX_OSERR, any other as EX_SOFTWARE. Call it in a catch block.
Failure currentFailure();

/// One line on standard error: the program's name, then errorLine(line).
void complain(const std::string& line);

}  // namespace program
