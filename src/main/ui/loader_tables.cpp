#include "main/ui/loader_tables.h"

#include <link.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>

namespace plemora {

namespace {

/// The linker puts the tables, and nothing else, in a segment of their own before the code: it is
/// neither run nor written, so it is as in the file.
void releaseTables(const dl_phdr_info& library) {
  const auto page = static_cast<std::uintptr_t>(getpagesize());
  for (int i = 0; i < library.dlpi_phnum; ++i) {
    const auto& segment = library.dlpi_phdr[i];
    if (segment.p_type == PT_LOAD && segment.p_offset == 0 && segment.p_flags == PF_R) {
      const std::uintptr_t start = library.dlpi_addr + segment.p_vaddr;
      const std::uintptr_t end = (start + segment.p_filesz) & ~(page - 1);
      madvise(reinterpret_cast<void*>(start), end - start, MADV_DONTNEED);
    }
  }
}

}  // namespace

LoaderTables::LoaderTables() {
  dl_iterate_phdr(
      [](dl_phdr_info*, std::size_t, void* known) {
        ++*static_cast<int*>(known);
        return 0;
      },
      &known_);
}

void LoaderTables::release() const {
  int known = known_;
  dl_iterate_phdr(
      [](dl_phdr_info* library, std::size_t, void* left) {
        if (--*static_cast<int*>(left) < 0) {
          releaseTables(*library);
        }
        return 0;
      },
      &known);
}

}  // namespace plemora
