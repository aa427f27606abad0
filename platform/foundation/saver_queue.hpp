#pragma once

#include "tarno/foundation/file_descriptor.hpp"

namespace tarno {

/// A place in the queue of the processes that wait to save in a folder, held until this object or the process
/// ends. The queue only orders them; the lock of the folder keeps them apart. Where there can be no queue (no
/// space for its file, no locks of this kind), every process counts as first.
class SaverQueue {
 public:
  /// Returns whether anybody waits in `folder`.
  static bool exists(int folder);

  /// Joins the end of the queue in `folder`, a descriptor that must outlive this object.
  explicit SaverQueue(int folder);
  SaverQueue(SaverQueue&&) = default;
  /// Leaves the queue. The last one to leave removes its file.
  ~SaverQueue();

  /// Moves up as far as possible. Returns whether this is the first place now.
  bool isFirst();

 private:
  FileDescriptor file_;
  int folder_;
  int place_;
};

}  // namespace tarno
