#include "tarno/common/file_place.hpp"

#include <fcntl.h>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <deque>
#include <utility>

#include "tarno/common/failure.hpp"

namespace program {
namespace {

using std::filesystem::path;
using tarno::FileDescriptor;

constexpr int mostLinks = 40;  // the same limit as in the kernel, see path_resolution(7)

Failure cannotCreate(const path& path, const std::string& reason) {
  return {EX_CANTCREAT, "cannot create " + path.string() + ": " + reason};
}

/// Returns whether a link in `folder` may be followed. This is the rule of the kernel's
/// fs.protected_symlinks, which is not enabled everywhere.
bool mayBeFollowed(const struct stat& link, int folder) {
  struct stat around {};
  if (link.st_uid == geteuid() || link.st_uid == 0) return true;
  return fstat(folder, &around) == 0 && (around.st_mode & (S_ISVTX | S_IWOTH)) == 0;
}

/// Returns the target of the link. If it is empty, errno says why.
path readLink(const FileDescriptor& link) {
  std::array<char, PATH_MAX> target{};
  const ssize_t length = readlinkat(link.get(), "", target.data(), target.size());
  return length > 0 ? path{target.data(), target.data() + length} : path{};
}

}  // namespace

FilePlace findPlace(const path& path) {
  const auto failed = [&] { return cannotCreate(path, std::strerror(errno)); };
  std::deque<std::filesystem::path> rest{path.begin(), path.end()};
  FileDescriptor folder{open(path.is_absolute() ? "/" : ".", O_PATH | O_DIRECTORY | O_CLOEXEC)};
  if (!folder) throw failed();
  for (int links = 0; !rest.empty();) {
    const auto name = rest.front().empty() ? "." : rest.front();  // a trailing slash leaves an empty name
    rest.pop_front();
    FileDescriptor item{openat(folder.get(), name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC)};
    struct stat found {};
    const bool isMissing = !item && errno == ENOENT && rest.empty();
    if (!isMissing && (!item || fstat(item.get(), &found) != 0)) throw failed();
    if (S_ISLNK(found.st_mode)) {
      if (!mayBeFollowed(found, folder.get()))
        throw cannotCreate(path, "the link " + name.string() + " in a shared folder belongs to another user");
      const auto target = readLink(item);
      if (++links > mostLinks) errno = ELOOP;
      if (target.empty() || links > mostLinks) throw failed();
      rest.insert(rest.begin(), target.begin(), target.end());
    } else if (rest.empty()) {
      return {std::move(folder), name, std::move(item)};
    } else {
      folder = std::move(item);
    }
  }
  throw cannotCreate(path, std::strerror(ENOENT));
}

}  // namespace program
