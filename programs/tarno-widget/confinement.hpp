#pragma once

namespace extension {

/// How a confined process may access files.
enum class FileAccess {
  readOnly,  ///< it may only read; descriptors that are already open for writing stay usable
  readWrite  ///< it may do everything that its user may do
};

/// Permanently denies this process what it does not need to draw a picture: new privileges, the network, new
/// programs and processes, access to other processes, and, for `readOnly`, changes of files. A fault in a
/// library that reads fonts or texts can then only make the picture wrong. Denied calls fail with an error,
/// as on a system that lacks them. Uses seccomp and, for `readOnly`, landlock, if the kernel has them. Call
/// it before any thread starts.
void confine(FileAccess access);

}  // namespace extension
