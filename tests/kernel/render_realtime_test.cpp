#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <vector>

#include "audio/render/render.h"
#include "kernel/buffers.h"
#include "support/realtime_guard.h"

namespace plemora {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

class RealtimeGuardTest : public ::testing::Test {
 protected:
  RealtimeGuardTest() { RealtimeGuard::reset(); }
};

/// The compiler must not know that there is nothing to print.
const char* volatile nothing = "";

struct ForbiddenCall {
  const char* function;  ///< as it is recorded
  bool locksOrWrites;
  std::function<void()> call;
};

/// To be made in this order, once.
const std::vector<ForbiddenCall>& forbiddenCalls() {
  static std::mutex mutex;
  static std::shared_mutex sharedMutex;
  static void* volatile memory = nullptr;
  static std::unique_ptr<int> kept;
  static std::vector<ForbiddenCall> calls{
      {"malloc", false, [] { memory = std::malloc(8); }},
      {"malloc", false, [] { kept.reset(new int(1)); }},
      {"free", false, [] { std::free(memory); }},
      {"pthread_mutex_lock", true, [] { std::lock_guard lock(mutex); }},
      {"pthread_rwlock_rdlock", true, [] { std::shared_lock lock(sharedMutex); }},
      {"pthread_rwlock_wrlock", true, [] { std::unique_lock lock(sharedMutex); }},
      {"write", true, [] { EXPECT_EQ(::write(-1, "", 0), -1); }},
      {"fputs", true, [] { std::fputs(nothing, stdout); }},
  };
  return calls;
}

TEST_F(RealtimeGuardTest, CatchesWhatARealTimeThreadMustNotDo) {
  for (const ForbiddenCall& forbidden : forbiddenCalls()) {
    if (forbidden.locksOrWrites && !RealtimeGuard::watchesLocks()) {
      continue;
    }
    SCOPED_TRACE(forbidden.function);
    RealtimeGuard::reset();
    {
      const RealtimeGuard::Scope scope;
      forbidden.call();
    }
    EXPECT_THAT(RealtimeGuard::violations(), ElementsAre(StartsWith(forbidden.function)));
  }
}

TEST_F(RealtimeGuardTest, RenderingIsClean) {
  struct Case {
    std::vector<Buffers::Shape> input;
    std::vector<Buffers::Shape> output;
  };
  const Case cases[] = {
      {{{1, 256}, {1, 256}}, {{1, 256}, {1, 256}}},
      {{{2, 256}}, {{2, 256}}},
      {{{2, 100}}, {{6, 128}}},
      {{{3, 64}}, {{3, 64}}},
      {{{1, 64, false}}, {{2, 64}}},
      {{}, {{2, 64}}},
      {{{0, 64}, {2, 31}}, {{1, 64}, {5, 64}}},
  };
  for (const Case& given : cases) {
    const Buffers input(given.input, 0.5f);
    const Buffers output(given.output);
    RenderState state(1.0f);
    {
      const RealtimeGuard::Scope scope;
      for (const float gain : {1.0f, 0.25f, 0.0f, 0.0f}) {
        state.targetGain.store(gain, std::memory_order_relaxed);
        render(input.list(), output.list(), state);
      }
    }
    EXPECT_THAT(RealtimeGuard::violations(), IsEmpty());
  }
}

}  // namespace
}  // namespace plemora
