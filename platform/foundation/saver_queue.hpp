#pragma once

#include "tarno/foundation/file_descriptor.hpp"

namespace tarno {

/// A place in the queue of the processes that wait to save in a folder. It is held until this object is
/// destroyed or the process ends. The queue only orders the processes; the lock of the folder keeps them
/// apart. If there can be no queue (no space for its file, no support for such locks), every process counts
/// as first.
class SaverQueue {
 public:
  /// Returns whether a process is waiting in `folder`.
  static bool exists(int folder);

  /// Creates the queue's file if it is missing; isFirst() then joins the queue. `folder` is a descriptor that
  /// must outlive this object.
  explicit SaverQueue(int folder);
  SaverQueue(SaverQueue&&) = default;
  /// Leaves the queue. The last one to leave removes its file.
  ~SaverQueue();

  /// Moves up as far as possible. Returns whether this process is the first now.
  bool isFirst();

 private:
  FileDescriptor file_;
  int folder_;
  int place_;
};

}  // namespace tarno
