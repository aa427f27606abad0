#include "tarno/common/memory.hpp"

#include <link.h>
#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>

namespace program {
namespace {

/// Gives back the pages of `object`, the program or a library, that are only read. Its headers, which this
/// reads, are in the first of its segments.
int releaseObject(dl_phdr_info* object, std::size_t, void*) {
  static const auto pageSize = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
  for (int i = object->dlpi_phnum; i-- > 0;) {
    const auto& segment = object->dlpi_phdr[i];
    if (segment.p_type != PT_LOAD || (segment.p_flags & PF_W) != 0) continue;
    const auto begin = object->dlpi_addr + segment.p_vaddr;
    const auto page = begin / pageSize * pageSize;
    // NOLINTNEXTLINE(performance-no-int-to-ptr): that is how an object's place is told
    madvise(reinterpret_cast<void*>(page), begin + segment.p_memsz - page, MADV_DONTNEED);
  }
  return 0;
}

}  // namespace

void releaseMemory() {
  malloc_trim(0);
  dl_iterate_phdr(releaseObject, nullptr);
}

}  // namespace program
