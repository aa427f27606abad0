#include "tarno/tarno-widget/confinement.hpp"

#include <linux/filter.h>
#include <linux/landlock.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdint>
#include <span>

#include "system_call_filters.inc"  // readOnlyFilter and readWriteFilter
#include "tarno/foundation/file_descriptor.hpp"

namespace extension {
namespace {

/// Denies everything that changes or executes files, by a ruleset that allows it for no folder.
void makeFilesReadOnly() {
  // All access rights of the first version of landlock(7) except the two for reading.
  landlock_ruleset_attr attributes{};
  attributes.handled_access_fs = ((LANDLOCK_ACCESS_FS_MAKE_SYM << 1) - 1) &
                                 ~std::uint64_t{LANDLOCK_ACCESS_FS_READ_FILE | LANDLOCK_ACCESS_FS_READ_DIR};
  const tarno::FileDescriptor ruleset{
      static_cast<int>(syscall(SYS_landlock_create_ruleset, &attributes, sizeof attributes, 0))};
  if (ruleset) syscall(SYS_landlock_restrict_self, ruleset.get(), 0);
}

void filterSystemCalls(std::span<const sock_filter> filter) {
  const sock_fprog program{static_cast<unsigned short>(filter.size()),
                           const_cast<sock_filter*>(filter.data())};
  prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program);
}

}  // namespace

void confine(FileAccess access) {
  if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0) return;
  if (access == FileAccess::readOnly) makeFilesReadOnly();
  if (access == FileAccess::readOnly) {
    filterSystemCalls(readOnlyFilter);
  } else {
    filterSystemCalls(readWriteFilter);
  }
}

}  // namespace extension
