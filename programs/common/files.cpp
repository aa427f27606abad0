#include "tarno/common/files.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "tarno/common/failure.hpp"
#include "tarno/foundation/file_descriptor.hpp"

namespace program {
namespace {

using tarno::FileDescriptor;
using tarno::writeAll;

Failure failed(int exitCode, const std::string& what, const std::filesystem::path& path) {
  return {exitCode, what + " " + path.string() + ": " + std::strerror(errno)};
}

mode_t currentUmask() {
  const mode_t mask = umask(0);
  umask(mask);
  return mask;
}

void writeDirectly(const std::filesystem::path& path, std::string_view bytes) {
  const FileDescriptor file{open(path.c_str(), O_WRONLY | O_CLOEXEC)};
  if (!file) throw failed(EX_CANTCREAT, "cannot open", path);
  if (!writeAll(file.get(), bytes)) throw failed(EX_IOERR, "cannot write", path);
}

/// Where the file at `path` is, or would be: behind all links, also where the last leads to no file.
std::filesystem::path linkTarget(std::filesystem::path path) {
  constexpr int mostLinks = 40;  // as for the kernel, path_resolution(7)
  for (int links = 0; links <= mostLinks; ++links) {
    std::error_code noLink;
    const auto target = std::filesystem::read_symlink(path, noLink);
    if (noLink) return path;
    path = path.parent_path() / target;
  }
  errno = ELOOP;
  throw failed(EX_CANTCREAT, "cannot create", path);
}

/// Through a new file beside it, which then takes its name. Not synced: what is written here can be made
/// again.
void replaceFile(const std::filesystem::path& path, std::string_view bytes, mode_t mode) {
  std::string temporary = path.parent_path() / ".tarno-XXXXXX";
  const FileDescriptor file{mkostemp(temporary.data(), O_CLOEXEC)};
  if (!file) throw failed(EX_CANTCREAT, "cannot create", path);
  if (fchmod(file.get(), mode) != 0 || !writeAll(file.get(), bytes) ||
      std::rename(temporary.c_str(), path.c_str()) != 0) {
    const auto failure = failed(EX_IOERR, "cannot write", path);
    unlink(temporary.c_str());
    throw failure;
  }
}

}  // namespace

std::string readFile(const std::filesystem::path& path, std::size_t limit) {
  const bool isInput = path == "-";
  const FileDescriptor file{isInput ? dup(STDIN_FILENO) : open(path.c_str(), O_RDONLY | O_CLOEXEC)};
  const std::filesystem::path shown = isInput ? "standard input" : path;
  if (!file) throw failed(EX_NOINPUT, "cannot open", shown);
  std::string bytes;
  char buffer[16384];
  while (true) {
    const ssize_t count = read(file.get(), buffer, sizeof buffer);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) throw failed(EX_NOINPUT, "cannot read", shown);
    if (count == 0) return bytes;
    bytes.append(buffer, static_cast<std::size_t>(count));
    if (bytes.size() > limit)
      throw Failure{EX_DATAERR, shown.string() + " is larger than " + std::to_string(limit) + " bytes"};
  }
}

void writeFile(const std::filesystem::path& path, std::string_view bytes) {
  struct stat status {};
  const bool exists = stat(path.c_str(), &status) == 0;
  if (exists && !S_ISREG(status.st_mode)) return writeDirectly(path, bytes);
  replaceFile(linkTarget(path), bytes, exists ? status.st_mode & 07777 : 0666 & ~currentUmask());
}

}  // namespace program
