#include "main/process/starting_code.h"

#include <link.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>

namespace plemora {

void giveBackStartingCode() {
  dl_iterate_phdr(
      [](dl_phdr_info* module, std::size_t, void*) {
        const auto page = static_cast<ElfW(Addr)>(sysconf(_SC_PAGESIZE));
        for (int i = 0; i < module->dlpi_phnum; ++i) {
          const ElfW(Phdr)& part = module->dlpi_phdr[i];
          // The loader writes to no other part than the writable ones, even those that it protects
          // afterwards.
          if (part.p_type == PT_LOAD && (part.p_flags & PF_W) == 0) {
            const ElfW(Addr) start = (module->dlpi_addr + part.p_vaddr) & ~(page - 1);
            const ElfW(Addr) end = module->dlpi_addr + part.p_vaddr + part.p_memsz;
            madvise(reinterpret_cast<void*>(start), end - start, MADV_DONTNEED);
          }
        }
        return 0;
      },
      nullptr);
}

}  // namespace plemora
