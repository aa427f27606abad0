#pragma once

namespace extension {

/// What a confined process may do to files besides reading them.
enum class FileAccess {
  readOnly,  ///< nothing; it may still write to the descriptors that it holds
  readWrite  ///< all that its user may do
};

/// Takes from this process, for good, what drawing a picture does not need: new privileges, the network, new
/// programs and processes, other processes, and what `access` rules out. A fault in a library that reads
/// fonts or texts from elsewhere can then do no more than draw a wrong picture. What is refused fails with
/// an error, as on a system that lacks it. Uses seccomp and, for `readOnly`, landlock, each where the kernel
/// has it. Call before any thread is started.
void confine(FileAccess access);

}  // namespace extension
