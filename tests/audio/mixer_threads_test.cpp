#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "adapters/linux/desktop/thread_queue.h"
#include "audio/audio_world.h"

// The mixer with its taps queue on a thread of its own and the sound on another one, as it runs in
// earnest; for the thread sanitizer above all.

namespace plemora {
namespace {

/// Queues on threads of their own, whose unfinished work is counted.
struct CountedQueues : SerialQueueFactory {
  struct Queue : SerialQueue {
    Queue(std::shared_ptr<SerialQueue> on, std::atomic<int>& counted)
        : thread(std::move(on)), unfinished(counted) {}
    void async(std::function<void()> work) override {
      ++unfinished;
      thread->async([&count = unfinished, work = std::move(work)]() mutable {
        work();
        work = nullptr;
        --count;
      });
    }
    std::shared_ptr<SerialQueue> thread;
    std::atomic<int>& unfinished;
  };

  std::shared_ptr<SerialQueue> makeQueue(const std::string& label) override {
    return std::make_shared<Queue>(threads.makeQueue(label), unfinished);
  }

  std::atomic<int> unfinished = 0;
  ThreadQueueFactory threads;
};

TEST(MixerThreads, keeps_three_threads_apart) {
  AudioWorld world;
  CountedQueues queues;
  constexpr const char* ids[] = {"com.a", "com.b", "com.c"};
  std::int32_t pid = 11;
  for (const char* id : ids) {
    world.play(pid++, id, id, world.speakers);
  }
  auto mixer = std::make_unique<MixerModel>(MixerServices{world.hal,
                                                          world.hal,
                                                          world.main,
                                                          queues,
                                                          world.clock,
                                                          world.workspace,
                                                          world.defaults,
                                                          world.consent,
                                                          world.system,
                                                          {"--log-levels"},
                                                          AudioWorld::ownPid});
  const auto settle = [&] {
    while (queues.unfinished > 0 || world.main.drain() > 0) {
      std::this_thread::yield();
    }
  };

  std::atomic<bool> isEnding = false;
  std::thread sound([&] {
    while (!isEnding) {
      world.hal.step(32);
    }
  });
  constexpr const char* outputs[] = {"speakers", "usb", "headset"};
  for (int i = 0; i < 300; ++i) {
    const char* id = ids[i % 3];
    mixer->setVolume(static_cast<float>(i * 7 % 11) / 10.0f, id);
    if (i % 5 == 0) {
      mixer->toggleMute(id);
    }
    if (i % 7 == 0) {
      mixer->setOutput(outputs[i % 4 % 3], id);
    }
    if (i % 50 == 49) {
      world.hal.setDefaultOutput(i % 100 == 49 ? world.usb : world.speakers);
    }
    world.main.advance(0.1);
    if (i % 20 == 0) {
      settle();
    }
  }
  for (const char* id : ids) {
    mixer->setOutput(std::nullopt, id);
    mixer->setVolume(0.5f, id);
  }
  settle();
  isEnding = true;
  sound.join();
  EXPECT_EQ(world.hal.liveTaps().size(), 3u);
  EXPECT_EQ(world.hal.runningProcs(), 3);
  EXPECT_EQ(world.heardOn(world.speakers), 0.75f) << "three at a quarter";

  // Gone in the middle of builds, with their ends not yet heard of.
  for (const char* id : ids) {
    mixer->setOutput("usb", id);
  }
  mixer.reset();
  EXPECT_TRUE(world.isClean());
  settle();
  EXPECT_TRUE(world.isClean());
}

}  // namespace
}  // namespace plemora
