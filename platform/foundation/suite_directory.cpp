#include "foundation/suite_directory.hpp"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <system_error>
#include <utility>

#include "foundation/iso8601.hpp"

namespace foundation {
namespace {

using std::filesystem::path;

[[noreturn]] void refuse(const path& path, std::string_view reason) {
  throw SuiteRefusal{path.string() + ' ' + std::string{reason}};
}

/// For a system call that has just failed.
[[noreturn]] void refuseAfter(std::string_view action, const path& path) {
  const std::string reason = std::generic_category().message(errno);
  throw SuiteRefusal{"cannot " + std::string{action} + ' ' + path.string() + ": " + reason};
}

/// Makes `directory` with mode 0700, and what is missing above it; true when it was not there.
bool makeDirectory(const path& directory) {
  if (mkdir(directory.c_str(), S_IRWXU) == 0) return true;
  if (errno == ENOENT && directory.has_relative_path()) {
    makeDirectory(directory.parent_path());
    if (mkdir(directory.c_str(), S_IRWXU) == 0) return true;
  }
  if (errno != EEXIST) refuseAfter("make", directory);
  return false;
}

int openDirectory(const path& directory) {
  return open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
}

int openSafely(const path& directory, SuiteDirectory::WhenMissing whenMissing) {
  int descriptor = openDirectory(directory);
  bool isNew = false;
  if (descriptor < 0 && errno == ENOENT && whenMissing == SuiteDirectory::WhenMissing::make) {
    isNew = makeDirectory(directory);
    descriptor = openDirectory(directory);
  }
  struct stat found {};
  if (descriptor < 0) {
    const int error = errno;
    if (lstat(directory.c_str(), &found) == 0) refuseUnsafe(directory, found, S_IFDIR);
    errno = error;
    refuseAfter("open", directory);
  }
  try {
    // The umask may have taken away what the owner needs, the directory above may have added bits.
    if (isNew && fchmod(descriptor, S_IRWXU) != 0) refuseAfter("set the permissions of", directory);
    if (fstat(descriptor, &found) != 0) refuseAfter("look at", directory);
    refuseUnsafe(directory, found, S_IFDIR);
  } catch (...) {
    close(descriptor);
    throw;
  }
  return descriptor;
}

/// False when there is nothing called `from`. Nothing that is called `to` is replaced.
bool rename(int directory, const std::string& from, const std::string& to) {
  if (renameat2(directory, from.c_str(), directory, to.c_str(), RENAME_NOREPLACE) == 0) return true;
  // Some file systems (NFS) cannot promise not to replace; there the exclusive lock and the look before have
  // to do.
  if (errno == EINVAL && renameat(directory, from.c_str(), directory, to.c_str()) == 0) return true;
  if (errno == ENOENT) return false;
  refuseAfter("rename", from);
}

// What SQLite may keep beside a file, and the file. The file comes last: a journal without its file does no
// harm, one beside a fresh file could be played back into it.
constexpr std::array<const char*, 4> suffixes{"-journal", "-wal", "-shm", ""};

bool isTaken(int directory, const std::string& name) {
  return std::any_of(suffixes.begin(), suffixes.end(), [&](const char* suffix) {
    return faccessat(directory, (name + suffix).c_str(), F_OK, AT_SYMLINK_NOFOLLOW) == 0;
  });
}

std::string freeName(int directory, const std::string& name) {
  std::string candidate = name;
  for (int number = 2; isTaken(directory, candidate); ++number) {
    candidate = name + '-' + std::to_string(number);
  }
  return candidate;
}

}  // namespace

void refuseUnsafe(const path& path, const struct stat& found, mode_t kind) {
  if (S_ISLNK(found.st_mode)) refuse(path, "is a symbolic link");
  if ((found.st_mode & S_IFMT) != kind) {
    refuse(path, kind == S_IFDIR ? "is not a directory" : "is not a regular file");
  }
  if (found.st_uid != geteuid()) refuse(path, "belongs to another user");
  if ((found.st_mode & (S_IWGRP | S_IWOTH)) != 0) refuse(path, "can be written by group or others");
}

SuiteLock::~SuiteLock() { flock(descriptor_, LOCK_UN); }

SuiteDirectory::SuiteDirectory(SuiteLocation location, WhenMissing whenMissing)
    : location_(std::move(location)), descriptor_(openSafely(location_.directory, whenMissing)) {}

SuiteDirectory::~SuiteDirectory() { close(descriptor_); }

SuiteLock SuiteDirectory::lockShared(const Deadline& deadline) const { return lock(LOCK_SH, deadline); }

SuiteLock SuiteDirectory::lockExclusively(const Deadline& deadline) const { return lock(LOCK_EX, deadline); }

SuiteLock SuiteDirectory::lock(int operation, const Deadline& deadline) const {
  while (flock(descriptor_, operation | LOCK_NB) != 0) {
    if (errno == EINTR) continue;
    if (errno != EWOULDBLOCK) refuseAfter("lock", location_.directory);
    if (!deadline.waitAMoment()) refuse(location_.directory, "is locked by another program");
  }
  return SuiteLock{descriptor_};
}

bool SuiteDirectory::hasFile() const {
  struct stat found {};
  if (fstatat(descriptor_, location_.file.filename().c_str(), &found, AT_SYMLINK_NOFOLLOW) != 0) {
    if (errno == ENOENT) return false;
    refuseAfter("look at", location_.file);
  }
  refuseUnsafe(location_.file, found, S_IFREG);
  return true;
}

bool SuiteDirectory::mayWriteFile() const {
  return faccessat(descriptor_, location_.file.filename().c_str(), W_OK, AT_EACCESS) == 0;
}

void SuiteDirectory::makeFile() const {
  // mknod instead of open: closing a descriptor drops every lock that the process holds on the file, those of
  // another thread's SQLite connection among them.
  const path name = location_.file.filename();
  if (mknodat(descriptor_, name.c_str(), S_IFREG | S_IRUSR | S_IWUSR, 0) != 0) {
    if (errno != EEXIST) refuseAfter("make", location_.file);
    return;
  }
  // The umask may have taken away what the owner needs.
  if (fchmodat(descriptor_, name.c_str(), S_IRUSR | S_IWUSR, 0) != 0) {
    refuseAfter("set the permissions of", location_.file);
  }
}

void SuiteDirectory::setFileAside(Date moment) const {
  std::string stamp = ISO8601DateFormatter{withInternetDateTime}.string(moment);
  std::erase_if(stamp, [](char c) { return c == '-' || c == ':'; });
  const std::string name = location_.file.filename().string();
  const std::string aside = freeName(descriptor_, name + ".damaged-" + stamp);
  for (const char* suffix : suffixes) rename(descriptor_, name + suffix, aside + suffix);
  if (fsync(descriptor_) != 0) refuseAfter("write", location_.directory);
}

}  // namespace foundation
