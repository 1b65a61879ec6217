#include "support/realtime_guard.h"

#include <dlfcn.h>
#include <pthread.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdio>
#include <sstream>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define PLEMORA_GUARD_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define PLEMORA_GUARD_SANITIZED 1
#endif
#endif

namespace plemora {
namespace {

struct Violation {
  const char* function;
  const void* caller;  ///< null when unknown
};

// Plain memory that exists before any constructor has run: the functions below are called that
// early, and must not call themselves.
thread_local int depth = 0;
std::array<Violation, RealtimeGuard::capacity> records;
std::atomic<std::size_t> recordCount = 0;

void note(const char* function, const void* caller) {
  if (depth > 0) {
    const std::size_t index = recordCount.fetch_add(1);
    if (index < records.size()) {
      records[index] = {function, caller};
    }
  }
}

std::string describe(const Violation& violation) {
  std::ostringstream text;
  text << violation.function;
  Dl_info place{};
  if (violation.caller && dladdr(violation.caller, &place) && place.dli_fname) {
    const auto* const base = static_cast<const char*>(place.dli_fbase);
    text << " called from " << place.dli_fname << "+0x" << std::hex
         << static_cast<const char*>(violation.caller) - base;
    if (place.dli_sname) {
      text << " (" << place.dli_sname << ")";
    }
  }
  return text.str();
}

}  // namespace

RealtimeGuard::Scope::Scope() {
  ++depth;
}

RealtimeGuard::Scope::~Scope() {
  --depth;
}

std::vector<std::string> RealtimeGuard::violations() {
  const std::size_t count = recordCount.load();
  std::vector<std::string> lines;
  for (std::size_t i = 0; i < std::min(count, records.size()); ++i) {
    lines.push_back(describe(records[i]));
  }
  if (count > records.size()) {
    lines.back() = "and " + std::to_string(count - records.size() + 1) + " more";
  }
  return lines;
}

void RealtimeGuard::reset() {
  recordCount.store(0);
}

}  // namespace plemora

#if defined(PLEMORA_GUARD_SANITIZED)

extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*onMalloc)(const volatile void*,
                                                                          std::size_t),
                                                         void (*onFree)(const volatile void*));

namespace plemora {
namespace {

[[maybe_unused]] const int hooks = __sanitizer_install_malloc_and_free_hooks(
    [](const volatile void*, std::size_t) { note("malloc", nullptr); },
    [](const volatile void* memory) {
      if (memory) {
        note("free", nullptr);
      }
    });

}  // namespace

bool RealtimeGuard::watchesLocks() {
  return false;
}

}  // namespace plemora

#else

namespace plemora {

bool RealtimeGuard::watchesLocks() {
  return true;
}

namespace {

/// The function that the one of that name in this file stands before, remembered in the slot (a
/// local static would be guarded by a lock). Of the condition variables an older kind is kept
/// under the same name, so that theirs is looked up with its version.
template <typename Function>
Function* next(std::atomic<Function*>& slot, const char* name, const char* version) {
  Function* function = slot.load(std::memory_order_acquire);
  if (!function) {
    void* const found = version ? dlvsym(RTLD_NEXT, name, version) : dlsym(RTLD_NEXT, name);
    function = reinterpret_cast<Function*>(found);
    slot.store(function, std::memory_order_release);
  }
  return function;
}

#if defined(__x86_64__)
constexpr const char* conditionVersion = "GLIBC_2.3.2";
#else
constexpr const char* conditionVersion = nullptr;
#endif

}  // namespace
}  // namespace plemora

// The allocator's functions are reached under the C library's own names for them, since looking
// them up would allocate.
extern "C" {

void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* memory);

#define PLEMORA_NOTE(function) plemora::note(function, __builtin_return_address(0))

void* malloc(std::size_t size) {
  PLEMORA_NOTE("malloc");
  return __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) {
  PLEMORA_NOTE("calloc");
  return __libc_calloc(count, size);
}

void* realloc(void* memory, std::size_t size) {
  PLEMORA_NOTE("realloc");
  return __libc_realloc(memory, size);
}

void free(void* memory) {
  if (memory) {
    PLEMORA_NOTE("free");
    __libc_free(memory);
  }
}

void* aligned_alloc(std::size_t alignment, std::size_t size) {
  PLEMORA_NOTE("aligned_alloc");
  return __libc_memalign(alignment, size);
}

int posix_memalign(void** memory, std::size_t alignment, std::size_t size) {
  PLEMORA_NOTE("posix_memalign");
  if (alignment % sizeof(void*) != 0 || alignment == 0 || (alignment & (alignment - 1)) != 0) {
    return 22;  // EINVAL
  }
  void* const made = __libc_memalign(alignment, size);
  if (!made) {
    return 12;  // ENOMEM
  }
  *memory = made;
  return 0;
}

// Each passes its arguments on to the function of the same name that comes after it.
#define PLEMORA_PASS_ON(version, result, function, parameters, ...)    \
  result function parameters {                                         \
    static constinit std::atomic<result(*) parameters> slot = nullptr; \
    PLEMORA_NOTE(#function);                                           \
    return plemora::next(slot, #function, version)(__VA_ARGS__);       \
  }

// clang-format off
PLEMORA_PASS_ON(nullptr, int, pthread_mutex_lock, (pthread_mutex_t* mutex), mutex)
PLEMORA_PASS_ON(nullptr, int, pthread_rwlock_rdlock, (pthread_rwlock_t* lock), lock)
PLEMORA_PASS_ON(nullptr, int, pthread_rwlock_wrlock, (pthread_rwlock_t* lock), lock)
PLEMORA_PASS_ON(plemora::conditionVersion, int, pthread_cond_wait,
                (pthread_cond_t* condition, pthread_mutex_t* mutex), condition, mutex)
PLEMORA_PASS_ON(plemora::conditionVersion, int, pthread_cond_timedwait,
                (pthread_cond_t* condition, pthread_mutex_t* mutex, const timespec* deadline),
                condition, mutex, deadline)
PLEMORA_PASS_ON(nullptr, ssize_t, write, (int file, const void* bytes, std::size_t count),
                file, bytes, count)
PLEMORA_PASS_ON(nullptr, ssize_t, writev, (int file, const iovec* parts, int count),
                file, parts, count)
PLEMORA_PASS_ON(nullptr, std::size_t, fwrite,
                (const void* items, std::size_t size, std::size_t count, std::FILE* file),
                items, size, count, file)
PLEMORA_PASS_ON(nullptr, int, fputs, (const char* text, std::FILE* file), text, file)
// clang-format on

}  // extern "C"

#endif
