#include "support/audio_contract.h"

#include <algorithm>
#include <cmath>

#include "adapters/stage/manual_serial_queue.h"
#include "adapters/stage/simulated_hal.h"
#include "adapters/stage/virtual_clock.h"
#include "adapters/stage/virtual_main_queue.h"

namespace plemora {
namespace {

class SimulatedWorld : public AudioWorld {
 public:
  AudioProperties& properties() override { return hal_; }
  AudioGraph& graph() override { return hal_; }
  std::shared_ptr<SerialQueue> makeIOQueue() override { return queues_.makeQueue("io"); }

  bool waitUntil(const std::function<bool()>& condition) override {
    main_.drain();
    return condition();
  }
  void settle() override { main_.drain(); }

  std::string addDevice(const std::string& name) override {
    SimulatedDevice device;
    device.uid = "device-" + std::to_string(++devices_);
    device.name = name;
    ids_[device.uid] = hal_.addDevice(device);
    return device.uid;
  }
  void removeDevice(const std::string& uid) override { hal_.removeDevice(ids_.at(uid)); }

  std::int32_t startPlayer(const std::string& deviceUID, float amplitude) override {
    SimulatedProcess process;
    process.pid = ++lastPid_;
    process.devices = {ids_.at(deviceUID)};
    process.source = [amplitude](std::uint64_t frame, std::uint32_t) {
      return frame / 50 % 2 == 0 ? amplitude : -amplitude;
    };
    players_[process.pid] = hal_.addProcess(process);
    return process.pid;
  }
  void stopPlayer(std::int32_t pid) override { hal_.removeProcess(players_.at(pid)); }

  float listenTo(const std::string& deviceUID) override {
    hal_.step(256);
    float peak = 0;
    for (const auto& channel : hal_.heard(ids_.at(deviceUID))) {
      for (const float sample : channel) {
        peak = std::max(peak, std::abs(sample));
      }
    }
    return peak;
  }
  float accuracy() const override { return 1e-6F; }

 private:
  VirtualClock clock_;
  VirtualMainQueue main_{clock_};
  StageQueueFactory queues_;
  SimulatedHal hal_{main_};
  std::map<std::string, AudioObjectID> ids_;
  std::map<std::int32_t, AudioObjectID> players_;
  std::int32_t lastPid_ = 100;
  int devices_ = 0;
};

INSTANTIATE_TEST_SUITE_P(Simulated, AudioContract,
                         testing::Values(AudioWorldFactory{
                             "simulated", [] { return std::make_unique<SimulatedWorld>(); }}));

}  // namespace
}  // namespace plemora
