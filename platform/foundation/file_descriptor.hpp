#pragma once

#include <string_view>
#include <utility>

namespace tarno {

/// Owns a file descriptor and closes it; -1 stands for none. Move-only; errno stays as it was when one is
/// closed, so that a failure can be reported after its clean-up.
class [[nodiscard]] FileDescriptor {
 public:
  FileDescriptor() = default;
  explicit FileDescriptor(int value) : value_(value) {}
  ~FileDescriptor() { close(); }
  FileDescriptor(FileDescriptor&& other) noexcept : value_(other.release()) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    if (this != &other) {
      close();
      value_ = other.release();
    }
    return *this;
  }

  explicit operator bool() const { return value_ >= 0; }
  int get() const { return value_; }

  /// Hands the descriptor to the caller, who closes it.
  int release() { return std::exchange(value_, -1); }

 private:
  void close();

  int value_ = -1;
};

/// Writes all of `bytes` to a descriptor; false, with errno set, when it cannot.
bool writeAll(int descriptor, std::string_view bytes);

}  // namespace tarno
