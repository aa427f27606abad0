#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

namespace program {

/// Returns the content of a file, or of standard input for "-". Throws Failure: EX_NOINPUT if it cannot be
/// opened or read, EX_DATAERR if it is larger than `limit` bytes.
std::string readFile(const std::filesystem::path& path, std::size_t limit);

/// Creates or replaces the file at `path` atomically: a reader sees the old or the new content, and an error
/// leaves the old one. (A power cut may lose both.) Keeps the permissions of a file that belongs to this
/// user, except set-user-ID, set-group-ID and the sticky bit; otherwise the umask decides. Follows a link
/// unless another user could have created it (see findPlace()). Writes directly to anything but a regular
/// file, such as a pipe or a device. Throws Failure: EX_CANTCREAT if the file cannot be created, EX_IOERR if
/// writing fails.
void writeFile(const std::filesystem::path& path, std::string_view bytes);

}  // namespace program
