#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

namespace program {

/// The whole of a file, or of standard input for "-". Throws Failure: EX_NOINPUT when it cannot be opened or
/// read, EX_DATAERR when it is larger than `limit` bytes.
std::string readFile(const std::filesystem::path& path, std::size_t limit);

/// Makes or replaces the file at `path`, whole or not at all: a reader sees the old content or the new one,
/// and a failure leaves the old one (a power cut may leave neither). The permissions of a file of ours are
/// kept, without set-user-ID and the like; any other file is replaced by one with those of the umask. A link
/// is followed, unless another user could have put it there (see findPlace()); what is not a regular file (a
/// pipe, a device) is written directly. Throws Failure: EX_CANTCREAT when nothing can be made there, EX_IOERR
/// when writing fails.
void writeFile(const std::filesystem::path& path, std::string_view bytes);

}  // namespace program
