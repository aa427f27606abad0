#pragma once

namespace extension {

/// How a confined process may access files.
enum class FileAccess {
  readOnly,  ///< only for reading; descriptors that are open for writing stay usable
  readWrite  ///< all that its user may do
};

/// Permanently takes from this process what drawing a picture does not need: new privileges, the network, new
/// programs and processes, access to other processes, and, for `readOnly`, all changes of files. A fault in a
/// library that reads fonts or texts can then do no more than draw a wrong picture. Denied calls fail with an
/// error, as on a system that lacks them. Uses seccomp and, for `readOnly`, landlock, each if the kernel has
/// it. Call it before any thread starts.
void confine(FileAccess access);

}  // namespace extension
