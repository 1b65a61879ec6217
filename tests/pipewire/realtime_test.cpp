// What the back end does on the graph's real-time thread neither allocates nor locks nor writes.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <optional>
#include <utility>

#include "pipewire/tap_rig.h"
#include "support/realtime_guard.h"

namespace plemora::rig {
namespace {

std::atomic<bool> guarding = false;

/// Passes everything on, and marks the thread that runs the IO blocks, not only for the time of a
/// block: whatever else happens on that thread between two blocks is watched as well.
class GuardedGraph : public AudioGraph {
 public:
  explicit GuardedGraph(AudioGraph& inner) : inner_(inner) {}

  OSStatus createProcessTap(const TapDescription& description, AudioObjectID& tap) override {
    return inner_.createProcessTap(description, tap);
  }
  OSStatus destroyProcessTap(AudioObjectID tap) override { return inner_.destroyProcessTap(tap); }
  OSStatus createAggregateDevice(const AggregateDescription& description,
                                 AudioObjectID& device) override {
    return inner_.createAggregateDevice(description, device);
  }
  OSStatus destroyAggregateDevice(AudioObjectID device) override {
    return inner_.destroyAggregateDevice(device);
  }
  OSStatus createIOProc(AudioObjectID device, std::shared_ptr<SerialQueue> queue,
                        AudioIOBlock block, AudioDeviceIOProcID& proc) override {
    const auto guarded = [block = std::move(block)](AudioBufferList input, AudioBufferList output) {
      static thread_local std::optional<RealtimeGuard::Scope> scope;
      if (guarding.load() && !scope) {
        scope.emplace();
      } else if (!guarding.load() && scope) {
        scope.reset();
      }
      block(input, output);
    };
    return inner_.createIOProc(device, std::move(queue), guarded, proc);
  }
  OSStatus destroyIOProc(AudioObjectID device, AudioDeviceIOProcID proc) override {
    return inner_.destroyIOProc(device, proc);
  }
  OSStatus start(AudioObjectID device, AudioDeviceIOProcID proc) override {
    return inner_.start(device, proc);
  }
  OSStatus stop(AudioObjectID device, AudioDeviceIOProcID proc) override {
    return inner_.stop(device, proc);
  }

 private:
  AudioGraph& inner_;
};

/// The server's library wakes the next node of the graph by a write to an event descriptor: that
/// is how every client's cycle ends.
bool isWakeUpOfTheNextNode(const std::string& violation) {
  return violation.starts_with("write ") &&
         (violation.find("libspa-support") != std::string::npos ||
          violation.find("libpipewire") != std::string::npos);
}

TEST(RealTimeThread, NeitherAllocatesNorLocksNorWrites) {
  TapRig rig(1024);
  GuardedGraph graph(rig.audio().graph());
  rig.setGraph(graph);
  const auto tone = rig.play({.signal = Signal::constant(0.25), .streams = 2});
  const auto other = rig.play({.name = "other", .signal = Signal::constant(0.125)});
  SinkRecorder recorder(rig.session, "first");
  auto tap = rig.tap(*tone, 0.5f);
  ASSERT_TRUE(tap);
  ASSERT_TRUE(rig.hears(recorder, 0.375f));
  std::vector<std::string> found;
  std::size_t wakeUps = 0;
  const auto watched = [&](const char* what, const auto& action) {
    SCOPED_TRACE(what);
    RealtimeGuard::reset();
    guarding = true;
    action();
    EXPECT_TRUE(recorder.record(3 * 1024));
    guarding = false;
    EXPECT_TRUE(recorder.record(3 * 1024));
    for (const auto& violation : RealtimeGuard::violations()) {
      if (isWakeUpOfTheNextNode(violation)) {
        ++wakeUps;
      } else {
        found.push_back(std::string(what) + ": " + violation);
      }
    }
  };
  watched("steady", [] {});
  watched("gain", [&] { tap->state().targetGain = 0.25f; });
  std::unique_ptr<AppTap> second;
  watched("another tap", [&] { second = rig.tap(*other, 0.5f, "second"); });
  watched("a stream joins", [&] {
    tone->open();
    recorder.record(4 * 1024);
  });
  watched("a stream leaves", [&] {
    tone->close(1);
    recorder.record(4 * 1024);
  });
  watched("a tap leaves", [&] { second.reset(); });
  EXPECT_THAT(found, testing::IsEmpty());
  if (RealtimeGuard::watchesLocks()) {
    EXPECT_GT(wakeUps, 0u) << "the thread was not watched at all";
  }
}

}  // namespace
}  // namespace plemora::rig
