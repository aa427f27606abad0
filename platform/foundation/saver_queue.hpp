#pragma once

#include "tarno/foundation/file_descriptor.hpp"

namespace tarno {

/// A place in the line of those who wait to save in a folder. It lasts as long as this object, and no longer
/// than the process. It only orders them, the folder's lock keeps them apart: where a line is not possible
/// (no space for its file, no such locks), everybody is first.
class SaverQueue {
 public:
  /// Whether somebody waits in `folder`.
  static bool exists(int folder);

  /// Joins the end of the line in `folder`, a descriptor that outlives this object.
  explicit SaverQueue(int folder);
  SaverQueue(SaverQueue&&) = default;
  /// Leaves the line. Who leaves it empty removes its file.
  ~SaverQueue();

  /// Moves up as far as there is room; whether nobody is before this one then.
  bool isFirst();

 private:
  FileDescriptor file_;
  int folder_;
  int place_;
};

}  // namespace tarno
