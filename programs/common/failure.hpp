#pragma once

#include <sysexits.h>

#include <stdexcept>
#include <string>

namespace program {

/// Why a program cannot do what was asked: one line for people, and the code it ends with (sysexits.h).
class Failure : public std::runtime_error {
 public:
  Failure(int exitCode, const std::string& line) : runtime_error(line), exitCode_(exitCode) {}

  int exitCode() const { return exitCode_; }

 private:
  int exitCode_;
};

}  // namespace program
