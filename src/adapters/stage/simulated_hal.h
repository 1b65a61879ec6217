#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "adapters/stage/hal_faults.h"
#include "adapters/stage/hal_listeners.h"
#include "adapters/stage/hal_properties.h"
#include "adapters/stage/simulated_object.h"
#include "platform/audio_graph.h"
#include "platform/audio_properties.h"
#include "platform/main_queue.h"

namespace plemora {

/// An audio hardware layer in memory: a scene of devices and processes, seen through the seams,
/// with taps and aggregate devices that pass samples whenever it is stepped. Any thread; listeners
/// are called through the main queue, for whatever a change really changed. Ids are never reused.
/// No sample rates are converted, and hardware volume and mute do not touch the samples.
class SimulatedHal : public AudioProperties, public AudioGraph {
 public:
  explicit SimulatedHal(MainQueue& main);
  ~SimulatedHal() override;

  // The scene. The first device with outputs becomes the default output.
  AudioObjectID addDevice(SimulatedDevice device);
  /// A user's own aggregate: its streams are those of the members. Stacked: each member plays the
  /// same; else the channels run on across the members.
  AudioObjectID addAggregate(SimulatedDevice facts, const std::vector<std::string>& memberUIDs,
                             const std::string& mainUID, bool isStacked = false);
  /// A default output that goes is replaced by the next device; processes lose the device.
  void removeDevice(AudioObjectID device);
  void updateDevice(AudioObjectID device, const std::function<void(SimulatedDevice&)>& change);
  SimulatedDevice device(AudioObjectID device) const;
  AudioObjectID addProcess(SimulatedProcess process);
  void removeProcess(AudioObjectID process);
  void updateProcess(AudioObjectID process, const std::function<void(SimulatedProcess&)>& change);
  void setDefaultOutput(AudioObjectID device);
  AudioObjectID defaultOutput() const;

  // Sound.
  /// How the channels of every tap are cut into buffers; empty (at first): one interleaved buffer.
  void setTapBuffers(std::vector<std::uint32_t> channels);
  /// One IO cycle of all devices: the processes play, taps capture, IO procs run on this thread.
  void step(std::uint32_t frames);
  /// What a device played in the last step, by channel; empty before the first one.
  Sound heard(AudioObjectID device) const;

  // Faults and counts.
  HalFaults& faults() { return faults_; }
  /// Calls the listeners of an address that many times, also when the object is gone.
  void notify(AudioObjectID object, const AudioObjectPropertyAddress& address, int times = 1);
  std::vector<TapDescription> liveTaps() const;
  /// Those made through createAggregateDevice.
  std::vector<AggregateDescription> liveAggregates() const;
  std::vector<AudioObjectID> liveAggregateIDs() const;
  int liveProcs() const;
  int runningProcs() const;
  int liveListeners() const { return listeners_->count(); }

  // AudioProperties.
  OSStatus dataSize(AudioObjectID object, const AudioObjectPropertyAddress& address,
                    std::size_t& size) override;
  OSStatus data(AudioObjectID object, const AudioObjectPropertyAddress& address, std::size_t& size,
                void* value) override;
  OSStatus string(AudioObjectID object, const AudioObjectPropertyAddress& address,
                  std::optional<std::string>& value) override;
  OSStatus setData(AudioObjectID object, const AudioObjectPropertyAddress& address,
                   std::size_t size, const void* value) override;
  std::optional<bool> isSettable(AudioObjectID object,
                                 const AudioObjectPropertyAddress& address) override;
  OSStatus addListener(AudioObjectID object, const AudioObjectPropertyAddress& address,
                       std::weak_ptr<AudioListenerBlock> block) override;
  OSStatus removeListener(AudioObjectID object, const AudioObjectPropertyAddress& address,
                          const std::shared_ptr<AudioListenerBlock>& block) override;

  // AudioGraph. A description that names a device, process or tap that is not there is refused.
  OSStatus createProcessTap(const TapDescription& description, AudioObjectID& tap) override;
  OSStatus destroyProcessTap(AudioObjectID tap) override;
  OSStatus createAggregateDevice(const AggregateDescription& description,
                                 AudioObjectID& device) override;
  OSStatus destroyAggregateDevice(AudioObjectID device) override;
  OSStatus createIOProc(AudioObjectID device, std::shared_ptr<SerialQueue> queue,
                        AudioIOBlock block, AudioDeviceIOProcID& proc) override;
  OSStatus destroyIOProc(AudioObjectID device, AudioDeviceIOProcID proc) override;
  OSStatus start(AudioObjectID device, AudioDeviceIOProcID proc) override;
  OSStatus stop(AudioObjectID device, AudioDeviceIOProcID proc) override;

 private:
  OSStatus read(AudioObjectID object, const AudioObjectPropertyAddress& address,
                std::span<const std::byte> given, HalValue& value) const;
  /// Applies a change under the lock and notifies of every value of these objects, and of the
  /// system object, that it changed.
  OSStatus change(std::vector<AudioObjectID> objects,
                  const std::function<OSStatus(HalState&)>& apply);
  OSStatus setRunning(AudioObjectID device, AudioDeviceIOProcID proc, bool isRunning);

  HalFaults faults_;
  std::shared_ptr<HalListeners> listeners_;
  mutable std::mutex mutex_;  // held while IO procs run
  HalState state_;
  std::uintptr_t nextProc_ = 1;
};

}  // namespace plemora
