#pragma once

#include <stdexcept>
#include <string>

namespace tarno {

/// Why a suite cannot be opened, read or saved. what() is one sentence without a full stop.
class SuiteError : public std::runtime_error {
 public:
  enum class Kind {
    value,        ///< a value that cannot be stored; saving it again cannot help
    unusable,     ///< the folder or the file is missing, not ours, not of its kind, or not permitted
    busy,         ///< other programs kept the suite to themselves for too long
    inputOutput,  ///< the system failed: an error of the disk, no space left, no memory
  };

  SuiteError(Kind kind, const std::string& sentence) : std::runtime_error(sentence), kind_(kind) {}

  Kind kind() const { return kind_; }

 private:
  Kind kind_;
};

}  // namespace tarno
