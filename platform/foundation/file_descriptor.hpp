#pragma once

#include <string_view>
#include <utility>

namespace tarno {

/// Owns a file descriptor and closes it; -1 means none. Movable, not copyable. Closing leaves errno
/// unchanged, so that an error can still be reported after the clean-up.
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

  /// Gives up ownership: the caller closes the descriptor.
  int release() { return std::exchange(value_, -1); }

 private:
  void close();

  int value_ = -1;
};

/// Writes all of `bytes` to `descriptor`. Returns false, with errno set, if that fails; a part may then have
/// been written.
bool writeAll(int descriptor, std::string_view bytes);

}  // namespace tarno
