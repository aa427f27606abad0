#pragma once

#include <stdexcept>
#include <string>

namespace tarno {

/// Thrown when a suite cannot be opened, read or saved. what() is one sentence without a full stop.
class SuiteError : public std::runtime_error {
 public:
  enum class Kind {
    value,        ///< a value that cannot be stored; saving it again cannot help
    unusable,     ///< the folder or the file is missing, of another owner or type, or not permitted
    busy,         ///< other programs held the lock for too long
    inputOutput,  ///< the system failed: a disk error, no space left, out of memory
  };

  SuiteError(Kind kind, const std::string& sentence) : std::runtime_error(sentence), kind_(kind) {}

  Kind kind() const { return kind_; }

 private:
  Kind kind_;
};

}  // namespace tarno
