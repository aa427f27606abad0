#pragma once

#include <filesystem>
#include <string>

#include "tarno/foundation/file_descriptor.hpp"

namespace program {

/// Where a path leads: a name in an open folder, so that nobody can redirect it afterwards.
struct FilePlace {
  tarno::FileDescriptor folder;  ///< opened with O_PATH
  std::string name;              ///< not the name of a symbolic link
  tarno::FileDescriptor item;  ///< the file of this name, opened with O_PATH; no descriptor if there is none
};

/// Follows `path` and every link in it; the last link may lead to a file that does not exist. A link in a
/// sticky or world-writable folder must belong to root or to this user, because anybody can create one there.
/// Throws Failure (EX_CANTCREAT).
FilePlace findPlace(const std::filesystem::path& path);

}  // namespace program
