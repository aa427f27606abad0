#include "tarno/foundation/suite_folder.hpp"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <system_error>
#include <utility>

#include "tarno/foundation/iso8601.hpp"
#include "tarno/foundation/suite_error.hpp"

namespace tarno {
namespace {

using std::filesystem::path;

/// The maximum size of the file: a few values of largestDefaultsValue in the longest JSON form.
constexpr std::size_t largestFile = std::size_t{64} << 20;

/// The new file, before it replaces the old one. Only the lock holder creates it, so one name is enough. A
/// file that a killed saver left is removed first.
constexpr const char* temporaryName = ".defaults.json.new";

constexpr const char* rehearsalName = ".defaults.json.rehearsal";

/// The lock file for network file systems, which can lock only files that are open for writing, and so no
/// folders.
constexpr const char* lockName = ".defaults.json.lock";

constexpr mode_t ownerOnly = S_IRUSR | S_IWUSR;

SuiteError unusable(const path& path, const char* reason) {
  return {SuiteError::Kind::unusable, path.string() + ' ' + reason};
}

/// Returns the error for a system call that has just failed, from errno.
SuiteError failure(const std::string& action, const path& path) {
  const int error = errno;
  const auto obstacles = {EACCES, EPERM, EROFS, ENOENT, ENOTDIR, EISDIR, ELOOP, ENAMETOOLONG, EEXIST};
  const bool isObstacle = std::find(obstacles.begin(), obstacles.end(), error) != obstacles.end();
  return {isObstacle ? SuiteError::Kind::unusable : SuiteError::Kind::inputOutput,
          "cannot " + action + ' ' + path.string() + ": " + std::generic_category().message(error)};
}

/// Returns whether `error` means that the file system does not support flock() or fsync() on a folder.
bool isUnsupported(int error) {
  const auto lacks = {EBADF, EINVAL, ENOLCK, ENOSYS, EOPNOTSUPP};
  return std::find(lacks.begin(), lacks.end(), error) != lacks.end();
}

/// Syncs the names in `folder`, so that they survive a power cut. Returns false if the file system cannot.
bool synchronizeFolder(int folder, const path& shown) {
  const bool isDone = fsync(folder) == 0;
  if (!isDone && !isUnsupported(errno)) throw failure("write", shown);
  return isDone;
}

/// Opens `name` in `folder` for reading; `shown` is its path for messages. Returns no descriptor if it does
/// not exist. Throws unless it is a `kind` (S_IFDIR or S_IFREG) that only the user can write.
FileDescriptor openSafely(int folder, const path& name, const path& shown, mode_t kind) {
  // Without O_NONBLOCK a FIFO would make the reader wait.
  constexpr int flags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
  FileDescriptor file{openat(folder, name.c_str(), flags)};
  if (!file && errno == ENOENT) return file;
  if (!file && errno == ELOOP) throw unusable(shown, "is a symbolic link");
  struct stat found {};
  if (!file || fstat(file.get(), &found) != 0) throw failure("open", shown);
  if ((found.st_mode & S_IFMT) != kind)
    throw unusable(shown, kind == S_IFDIR ? "is not a folder" : "is not a regular file");
  if (found.st_uid != geteuid()) throw unusable(shown, "belongs to another user");
  if ((found.st_mode & (S_IWGRP | S_IWOTH)) != 0) throw unusable(shown, "can be written by group or others");
  if (kind == S_IFREG && std::cmp_greater(found.st_size, largestFile))
    throw unusable(shown, "is larger than 64 MiB");
  return file;
}

/// Creates `directory` and its missing parents, syncs them, and adds them to `made`, outermost first.
void makeDirectory(const path& directory, std::vector<path>& made) {
  int result = mkdir(directory.c_str(), S_IRWXU);
  if (result != 0 && errno == ENOENT && directory.has_relative_path()) {
    makeDirectory(directory.parent_path(), made);
    result = mkdir(directory.c_str(), S_IRWXU);
  }
  if (result != 0 && errno == EEXIST) return;
  if (result != 0) throw failure("create", directory);
  made.push_back(directory);
  // The umask may have removed permissions that the owner needs. Without /proc this call is not supported;
  // then opening the folder shows whether it was needed.
  if (fchmodat(AT_FDCWD, directory.c_str(), S_IRWXU, AT_SYMLINK_NOFOLLOW) != 0 && errno != EOPNOTSUPP)
    throw failure("set the permissions of", directory);
  const auto above = directory.parent_path();
  const FileDescriptor folder{openat(AT_FDCWD, above.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)};
  if (folder) synchronizeFolder(folder.get(), above);  // some parents may be entered but not read
}

}  // namespace

SuiteFolder::SuiteFolder(const SuiteLocation& location, FileDescriptor descriptor)
    : location_(location), descriptor_(std::move(descriptor)) {}

SuiteFolder::~SuiteFolder() {
  if (isLocked_ && descriptor_) flock(lockedFile().get(), LOCK_UN);
}

std::optional<SuiteFolder> SuiteFolder::find(const SuiteLocation& location) {
  auto descriptor = openSafely(AT_FDCWD, location.directory, location.directory, S_IFDIR);
  if (!descriptor) return std::nullopt;
  return SuiteFolder{location, std::move(descriptor)};
}

SuiteFolder SuiteFolder::findOrMake(const SuiteLocation& location, std::vector<path>& made) {
  if (auto folder = find(location)) return *std::move(folder);
  makeDirectory(location.directory, made);
  auto descriptor = openSafely(AT_FDCWD, location.directory, location.directory, S_IFDIR);
  if (!descriptor) throw failure("open", location.directory);
  return {location, std::move(descriptor)};
}

bool SuiteFolder::isInPlace() const {
  struct stat held {};
  struct stat there {};
  return fstat(descriptor_.get(), &held) == 0 && lstat(location_.directory.c_str(), &there) == 0 &&
         held.st_dev == there.st_dev && held.st_ino == there.st_ino;
}

bool SuiteFolder::tryLock() {
  const int folder = descriptor_.get();
  if (!queue_ && SaverQueue::exists(folder)) queue_.emplace(folder);
  if (queue_ && !queue_->isFirst()) return false;
  isLocked_ = flock(lockedFile().get(), LOCK_EX | LOCK_NB) == 0;
  if (isLocked_) {
    queue_.reset();
  } else if (errno == EWOULDBLOCK) {
    if (!queue_) queue_.emplace(folder);
  } else if (!lockFile_ && isUnsupported(errno)) {
    lockFile_ =
        FileDescriptor{openat(folder, lockName, O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, ownerOnly)};
    if (!lockFile_) throw failure("create", location_.directory / lockName);
    return tryLock();
  } else {
    throw failure("lock", location_.directory);
  }
  return isLocked_;
}

std::optional<std::string> SuiteFolder::readFile() const {
  const auto file = openSafely(descriptor_.get(), location_.file.filename(), location_.file, S_IFREG);
  if (!file) return std::nullopt;
  std::string text;
  std::size_t length = 0;
  ssize_t count = 0;
  do {
    if (length == text.size()) text.resize(std::max<std::size_t>(length * 2, 4096));
    count = read(file.get(), &text[length], text.size() - length);
    if (count < 0) throw failure("read", location_.file);
    length += static_cast<std::size_t>(count);
  } while (count > 0);
  text.resize(length);
  return text;
}

void SuiteFolder::replaceFile(std::string_view text, const std::optional<std::string>& old,
                              bool isDamaged) const {
  writeTemporary(text);
  std::optional<std::string> aside;
  bool isReplaced = false;
  try {
    if (isDamaged) aside = setAside(location_.file.filename());
    renameTemporary();
    isReplaced = true;
    synchronize();
  } catch (...) {
    if (!isReplaced) removeTemporary();
    if (isReplaced || aside) putBack(old, aside);
    throw;
  }
}

/// Undoes a failed save: restores the old file, or removes the new one if there was none. Otherwise readers
/// would see a report whose save was reported as failed.
void SuiteFolder::putBack(const std::optional<std::string>& old,
                          const std::optional<std::string>& aside) const {
  const int folder = descriptor_.get();
  const auto name = location_.file.filename();
  if (aside) {
    // renameat() does nothing if both names belong to the same file.
    if (renameat(folder, aside->c_str(), folder, name.c_str()) == 0) unlinkat(folder, aside->c_str(), 0);
  } else if (old) {
    writeTemporary(*old);
    renameTemporary();
  } else {
    unlinkat(folder, name.c_str(), 0);
  }
}

bool SuiteFolder::rehearse(std::string_view text) const {
  const int folder = descriptor_.get();
  try {
    writeTemporary(text);
    if (renameat(folder, temporaryName, folder, rehearsalName) != 0) throw failure("replace", location_.file);
    if (unlinkat(folder, rehearsalName, 0) != 0) throw failure("remove", location_.directory / rehearsalName);
    const bool lasts = synchronize();
    // All other obstacles have shown by now. Only an immutable file would still stop a real save.
    struct statx found {};
    const bool isThere =
        statx(folder, location_.file.filename().c_str(), AT_SYMLINK_NOFOLLOW, 0, &found) == 0;
    errno = EPERM;
    if (isThere && (found.stx_attributes & (STATX_ATTR_IMMUTABLE | STATX_ATTR_APPEND)) != 0)
      throw failure("replace", location_.file);
    return lasts;
  } catch (...) {
    removeTemporary();
    unlinkat(folder, rehearsalName, 0);
    throw;
  }
}

void SuiteFolder::writeTemporary(std::string_view text) const {
  const path shown = location_.directory / temporaryName;
  if (text.size() > largestFile) throw unusable(location_.file, "would be larger than 64 MiB");
  constexpr int flags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
  FileDescriptor file{openat(descriptor_.get(), temporaryName, flags, ownerOnly)};
  if (!file && errno == EEXIST) {
    if (!removeTemporary() && errno == EISDIR) setAside(temporaryName);
    file = FileDescriptor{openat(descriptor_.get(), temporaryName, flags, ownerOnly)};
  }
  if (!file) throw failure("create", shown);
  if (fchmod(file.get(), ownerOnly) == 0 && writeAll(file.get(), text) && fsync(file.get()) == 0) return;
  const auto failed = failure("write", shown);
  removeTemporary();
  throw failed;
}

bool SuiteFolder::removeTemporary() const { return unlinkat(descriptor_.get(), temporaryName, 0) == 0; }

void SuiteFolder::renameTemporary() const {
  const int folder = descriptor_.get();
  if (renameat(folder, temporaryName, folder, location_.file.filename().c_str()) != 0)
    throw failure("replace", location_.file);
}

/// Gives the file `name` a dated name, which it returns. The file keeps its old name as well, if the file
/// system allows two names.
std::string SuiteFolder::setAside(const std::string& name) const {
  std::string stamp = ISO8601DateFormatter{withInternetDateTime}.string(now());
  std::erase_if(stamp, [](char c) { return c == '-' || c == ':'; });
  const int folder = descriptor_.get();
  const std::string base = name + ".damaged-" + stamp;
  std::string aside = base;
  for (int number = 2; linkat(folder, name.c_str(), folder, aside.c_str(), 0) != 0; ++number) {
    // A folder cannot have two names, nor can a file on some file systems: rename it. NFS does not support
    // RENAME_NOREPLACE.
    if (errno != EEXIST && renameat2(folder, name.c_str(), folder, aside.c_str(), RENAME_NOREPLACE) == 0)
      break;
    if (errno == EINVAL && renameat(folder, name.c_str(), folder, aside.c_str()) == 0) break;
    if (errno != EEXIST) throw failure("set aside", location_.directory / name);
    aside = base + '-' + std::to_string(number);
  }
  return aside;
}

bool SuiteFolder::synchronize() const { return synchronizeFolder(descriptor_.get(), location_.directory); }

}  // namespace tarno
