// What becomes of taps when the library mixes up the memory of a connection, which it does by
// itself only now and then.

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <pipewire/pipewire.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <vector>

#include "pipewire/tap_rig.h"

namespace plemora::rig {
namespace {

/// All connections that this process has made, the rig's among them. Any thread.
class Connections {
 public:
  void add(pw_core* core) {
    const std::lock_guard lock(mutex_);
    made_.push_back(core);
  }
  std::size_t count() {
    const std::lock_guard lock(mutex_);
    return made_.size();
  }
  pw_core* last() {
    const std::lock_guard lock(mutex_);
    return made_.back();
  }

 private:
  std::mutex mutex_;
  std::vector<pw_core*> made_;
};
Connections connections;

/// From here on the numbers of the connection's memory differ from the server's.
void mixUpMemory(TapRig& rig, pw_core* core) {
  struct Stray {
    pw_core* core;
    std::atomic<bool> isIn = false;
  } stray{core};
  const auto import = [](spa_loop*, bool, std::uint32_t, const void*, std::size_t, void* data) {
    auto& wanted = *static_cast<Stray*>(data);
    const int file = memfd_create("stray", MFD_CLOEXEC);
    // As large as any: the library writes to it.
    const bool isLarge = ftruncate(file, 1 << 20) == 0;
    auto* pool = pw_core_get_mempool(wanted.core);
    wanted.isIn =
        isLarge && pw_mempool_import(pool, PW_MEMBLOCK_FLAG_READWRITE, SPA_DATA_MemFd, file);
    return 0;
  };
  auto* loop = pw_context_get_main_loop(pw_core_get_context(core));
  pw_loop_invoke(loop, import, 0, nullptr, 0, false, &stray);
  ASSERT_TRUE(rig.eventually(5, [&] { return stray.isIn.load(); }));
}

TEST(Tap, MovesOnWhenTheMemoryOfItsConnectionIsMixedUp) {
  TapRig rig;
  const auto tone = rig.play({.signal = Signal::constant(0.25)});
  SinkRecorder recorder(rig.session, "first");
  ASSERT_TRUE(rig.hears(recorder, 0.25f));
  const std::size_t before = connections.count();
  auto tap = rig.tap(*tone, 0.25f);
  ASSERT_TRUE(tap);
  ASSERT_TRUE(rig.hears(recorder, 0.0625f));
  ASSERT_EQ(connections.count(), before + 1);

  ASSERT_NO_FATAL_FAILURE(mixUpMemory(rig, connections.last()));
  recorder.clear();
  // One that is silent itself asks for links, whose memory is refused.
  const auto silent = rig.play({.name = "silent", .signal = Signal::constant(0)});
  const auto other = rig.tap(*silent, 0.25f);
  ASSERT_TRUE(other);
  ASSERT_TRUE(rig.eventually(10, [&] { return connections.count() == before + 2; }));
  ASSERT_TRUE(recorder.record(48000));
  const auto heard = recorder.take();
  EXPECT_LE(*std::max_element(heard[0].begin(), heard[0].end()), 0.0625f)
      << "the stream that was there moves unheard";
  tone->open();
  EXPECT_TRUE(rig.hears(recorder, 0.125f));
}

}  // namespace
}  // namespace plemora::rig

/// Stands before the library's function of that name.
extern "C" pw_core* pw_context_connect(pw_context* context, pw_properties* properties,
                                       std::size_t userDataSize) {
  const auto next =
      reinterpret_cast<decltype(&pw_context_connect)>(dlsym(RTLD_NEXT, "pw_context_connect"));
  pw_core* const core = next(context, properties, userDataSize);
  plemora::rig::connections.add(core);
  return core;
}
