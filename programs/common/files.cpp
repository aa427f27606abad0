#include "tarno/common/files.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <random>

#include "tarno/common/failure.hpp"
#include "tarno/common/file_place.hpp"
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

/// Returns "/proc/self/fd/N", which is a path to an open file, even one that was opened with O_PATH.
std::string pathOf(const FileDescriptor& file) { return "/proc/self/fd/" + std::to_string(file.get()); }

void writeDirectly(const FilePlace& place, const std::filesystem::path& path, std::string_view bytes) {
  const FileDescriptor file{open(pathOf(place.item).c_str(), O_WRONLY | O_CLOEXEC)};
  if (!file) throw failed(EX_CANTCREAT, "cannot open", path);
  if (!writeAll(file.get(), bytes)) throw failed(EX_IOERR, "cannot write", path);
}

/// Returns the permissions for `file`, which replaces another file. They are those of the old file if that
/// belongs to this user and has no access list, which would change the meaning of the group's permissions. If
/// the new file has another group, that group gets the permissions of others.
mode_t modeFor(const FileDescriptor& file, const FilePlace& place) {
  struct stat old {};
  struct stat made {};
  const bool isOurs = place.item && fstat(place.item.get(), &old) == 0 && fstat(file.get(), &made) == 0 &&
                      old.st_uid == made.st_uid;
  const bool hasList = getxattr(pathOf(place.item).c_str(), "system.posix_acl_access", nullptr, 0) >= 0 ||
                       (errno != ENODATA && errno != ENOTSUP);
  if (!isOurs || hasList) return 0666 & ~currentUmask();
  const mode_t group = old.st_gid == made.st_gid ? old.st_mode & S_IRWXG : (old.st_mode & S_IRWXO) << 3;
  return (old.st_mode & (S_IRWXU | S_IRWXO)) | group;
}

std::string temporaryName() {
  std::random_device random;
  return ".tarno-" + std::to_string(random()) + std::to_string(random());
}

/// Writes a new file and renames it. Does not sync it, because whatever is written here can be created again.
void replaceFile(const FilePlace& place, const std::filesystem::path& path, std::string_view bytes) {
  const int folder = place.folder.get();
  const auto temporary = temporaryName();
  // An unnamed file disappears when the program is killed. Not every file system supports it.
  constexpr mode_t ownerOnly = S_IRUSR | S_IWUSR;
  FileDescriptor file{openat(folder, ".", O_TMPFILE | O_WRONLY | O_CLOEXEC, ownerOnly)};
  bool hasName = !file;
  if (hasName)
    file = FileDescriptor{
        openat(folder, temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, ownerOnly)};
  if (!file) throw failed(EX_CANTCREAT, "cannot create", path);
  const bool isWritten = fchmod(file.get(), modeFor(file, place)) == 0 && writeAll(file.get(), bytes);
  if (isWritten && !hasName)
    hasName = linkat(AT_FDCWD, pathOf(file).c_str(), folder, temporary.c_str(), AT_SYMLINK_FOLLOW) == 0;
  if (isWritten && hasName && renameat(folder, temporary.c_str(), folder, place.name.c_str()) == 0) return;
  const auto failure = failed(EX_IOERR, "cannot write", path);
  if (hasName) unlinkat(folder, temporary.c_str(), 0);
  throw failure;
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
  const auto place = findPlace(path);
  struct stat found {};
  if (place.item && fstat(place.item.get(), &found) != 0) throw failed(EX_CANTCREAT, "cannot create", path);
  if (place.item && !S_ISREG(found.st_mode)) return writeDirectly(place, path, bytes);
  replaceFile(place, path, bytes);
}

}  // namespace program
