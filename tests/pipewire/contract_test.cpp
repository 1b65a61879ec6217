#include <algorithm>
#include <array>
#include <map>

#include "pipewire/tap_rig.h"
#include "support/audio_contract.h"

namespace plemora {
namespace {

// The back end on a private sound server, with real sinks and players.
class ServerWorld : public AudioWorld {
 public:
  AudioProperties& properties() override { return rig_.audio().properties(); }
  AudioGraph& graph() override { return rig_.audio().graph(); }
  std::shared_ptr<SerialQueue> makeIOQueue() override { return queues_.makeQueue("contract"); }

  bool waitUntil(const std::function<bool()>& condition) override {
    return rig_.eventually(8, condition);
  }
  void settle() override {
    rig_.session.graph().sync();
    rig_.eventually(0.1, [] { return false; });
  }

  std::string addDevice(const std::string& name) override {
    const std::string uid = "contract-" + std::to_string(++count_);
    rig_.session.graph().createSink({.name = uid, .description = name});
    return uid;
  }
  void removeDevice(const std::string& uid) override { rig_.session.graph().removeSink(uid); }

  std::int32_t startPlayer(const std::string& deviceUID, float amplitude) override {
    rig::ToneOptions options;
    options.name = "contract-player-" + std::to_string(++count_);
    options.signal = rig::Signal::constant(amplitude);
    options.target = deviceUID;
    auto player = rig_.play(options, deviceUID);
    const std::int32_t pid = player->pid();
    players_[pid] = std::move(player);
    return pid;
  }
  void stopPlayer(std::int32_t pid) override { players_.erase(pid); }

  float listenTo(const std::string& deviceUID) override {
    // Taps and gains change by ramps from one cycle to the next.
    rig_.eventually(0.25, [] { return false; });
    rig::SinkRecorder recorder(rig_.session, deviceUID);
    // A busy machine makes clients of the server miss a cycle: what is heard is what most pieces
    // hold.
    std::array<double, 7> peaks{};
    for (double& peak : peaks) {
      peak = rig::peak(recorder.next(512)[0]);
    }
    std::ranges::nth_element(peaks, peaks.begin() + 3);
    return static_cast<float>(peaks[3]);
  }
  float accuracy() const override { return 0.0001F; }

 private:
  rig::TapRig rig_{256};
  ThreadQueueFactory queues_;
  std::map<std::int32_t, std::unique_ptr<rig::TonePlayer>> players_;
  int count_ = 0;
};

INSTANTIATE_TEST_SUITE_P(PipeWire, AudioContract,
                         testing::Values(AudioWorldFactory{
                             "PipeWire", [] { return std::make_unique<ServerWorld>(); }}),
                         [](const auto& given) { return given.param.name; });

}  // namespace
}  // namespace plemora
