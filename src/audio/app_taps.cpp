#include "audio/app_taps.h"

#include <algorithm>
#include <utility>

#include "platform/main_queue.h"

namespace plemora {

/// One build under way. The tap and its result belong to the tap queue until the main queue is
/// told of the end.
struct AppTaps::Build {
  std::shared_ptr<AppTap> tap;
  bool started = false;
  std::uint64_t generation = 0;  ///< of the app when the build began
  bool isAwaited = false;        ///< somebody asked for something meanwhile
};

AppTaps::AppTaps(const MixerServices& services, BuiltHandler onBuilt)
    : services_(services),
      onBuilt_(std::move(onBuilt)),
      tapQueue_(services.queues.makeQueue("com.quorvane.mixer.taps")),
      anchor_(std::make_shared<AppTaps*>(this)) {}

AppTaps::~AppTaps() {
  for (auto& [id, tap] : taps_) {
    stopOnQueue(std::move(tap));
  }
  // A build that is still to come, or has ended without the main queue having heard of it: its
  // tap is stopped behind it on the same queue.
  for (auto& [id, build] : building_) {
    tapQueue_->async([build = std::move(build)] { build->tap->stop(); });
  }
  tapQueue_.reset();  // waits for all of it
}

void AppTaps::sync(const TapDesign& design, AudioObjectID outputDevice, float gain) {
  const std::string& id = design.bundleID;
  if (const auto running = taps_.find(id);
      running != taps_.end() && running->second->design().sameTap(design)) {
    running->second->state().targetGain.store(std::max(gain, 0.0f), std::memory_order_relaxed);
    return;
  }
  if (const auto building = building_.find(id); building != building_.end()) {
    building->second->isAwaited = true;
    return;
  }
  startBuild(design, outputDevice, gain);
}

void AppTaps::startBuild(const TapDesign& design, AudioObjectID outputDevice, float gain) {
  const std::string& id = design.bundleID;
  auto build = std::make_shared<Build>();
  build->tap = std::make_shared<AppTap>(services_.properties, services_.graph, services_.clock,
                                        design, services_.queues.makeQueue("com.quorvane.mixer.io"),
                                        std::make_shared<RenderState>(gain));
  build->generation = tapGenerations_[id];
  building_[id] = build;

  // The destructor waits for the queue, so this may use the main queue; what then runs on the
  // main queue may find these taps gone.
  tapQueue_->async(
      [build, id, outputDevice, &mainQueue = services_.mainQueue, anchor = std::weak_ptr(anchor_)] {
        build->started = build->tap->start(outputDevice);
        if (!build->started) {
          build->tap->stop();
        }
        mainQueue.async([anchor, id] {
          if (const auto taps = anchor.lock()) {
            (*taps)->finishBuild(id);
          }
        });
      });
}

void AppTaps::finishBuild(const std::string& id) {
  const auto node = building_.extract(id);
  const std::shared_ptr<Build> build = node.mapped();
  const bool isStored = build->started && build->generation == tapGenerations_[id];
  if (isStored) {
    if (auto replaced = std::exchange(taps_[id], build->tap)) {
      stopOnQueue(std::move(replaced));
    }
  } else if (build->started) {
    stopOnQueue(std::move(build->tap));
  }
  onBuilt_(id, isStored || build->isAwaited);
}

void AppTaps::discardTap(const std::string& id) {
  ++tapGenerations_[id];
  if (auto node = taps_.extract(id)) {
    stopOnQueue(std::move(node.mapped()));
  }
}

void AppTaps::stopOnQueue(std::shared_ptr<AppTap> tap) {
  tapQueue_->async([tap = std::move(tap)] { tap->stop(); });
}

std::vector<std::string> AppTaps::ids() const {
  std::vector<std::string> ids;
  for (const auto& [id, tap] : taps_) {
    ids.push_back(id);
  }
  return ids;
}

std::vector<TapLevel> AppTaps::takeLevels() {
  std::vector<TapLevel> levels;
  for (const auto& [id, tap] : taps_) {
    RenderState& state = tap->state();
    levels.push_back({.id = id,
                      .gain = state.targetGain.load(std::memory_order_relaxed),
                      .inputPeak = takePeak(state.inputPeak),
                      .peak = takePeak(state.peak)});
  }
  return levels;
}

}  // namespace plemora
