#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace plemora {

/// Finds calls that a real-time thread must not make. A test executable that has this file's
/// source linked in routes its allocations, frees, locks, waits and writes through it, those of
/// the shared libraries too; on threads that are inside a Scope they are recorded (and still
/// carried out), on others nothing happens.
///
/// Recorded: malloc, calloc, realloc, free, posix_memalign, aligned_alloc (and with them operator
/// new and delete), pthread_mutex_lock, pthread_rwlock_rdlock and _wrlock, pthread_cond_wait and
/// _timedwait, write, writev, fwrite, fputs. In a build with a sanitizer, which has the allocator
/// and the locks for itself, allocations and frees only.
class RealtimeGuard {
 public:
  /// Marks the thread that makes it as a real-time one until it is destroyed. May be nested.
  class Scope {
   public:
    Scope();
    ~Scope();
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;
  };

  /// What was recorded since the last reset, on all threads, one line for each call: the function
  /// and where it was called from. At most `capacity` lines, the last one says how many calls more
  /// there were. Not inside a Scope.
  static std::vector<std::string> violations();

  /// Forgets the recorded ones. No other thread may be inside a Scope.
  static void reset();

  /// Whether locks and writes are recorded in this build.
  static bool watchesLocks();

  static constexpr std::size_t capacity = 64;
};

}  // namespace plemora
