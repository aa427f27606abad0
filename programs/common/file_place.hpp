#pragma once

#include <filesystem>
#include <string>

#include "tarno/foundation/file_descriptor.hpp"

namespace program {

/// Where a path leads: a name in a folder that is held open, so that nobody can lead it elsewhere afterwards.
struct FilePlace {
  tarno::FileDescriptor folder;  ///< opened with O_PATH
  std::string name;              ///< names no symbolic link
  tarno::FileDescriptor item;    ///< what has the name, opened with O_PATH; none where nothing has it
};

/// Follows `path` and every link on its way; the last may lead to nothing. A link in a folder that is sticky
/// or that everybody can write must be root's or ours: anybody can put one there. Throws Failure
/// (EX_CANTCREAT).
FilePlace findPlace(const std::filesystem::path& path);

}  // namespace program
