#pragma once

#include <memory>
#include <string>
#include <vector>

#include "audio/playback_devices.h"
#include "audio/render/render_state.h"
#include "platform/audio_graph.h"
#include "platform/audio_properties.h"
#include "platform/clock.h"
#include "platform/serial_queue.h"

namespace plemora {

/// What a tap is made from. None of it can be changed while the tap runs.
struct TapDesign {
  std::string bundleID;                       ///< names the tap, also in the log
  std::vector<AudioObjectID> processObjects;  ///< of the app and of what it answers for
  std::string outputUID;                      ///< device that the sound is to be heard on
  std::string sourceUID;                      ///< device that the app plays to

  /// The same tap serves both: only the set of processes counts, not their order.
  bool sameTap(const TapDesign& other) const;
};

/// Gives one app its own volume: a process tap that silences the app's direct output while it is
/// read, a private aggregate device of the tap and the output device, and an IO proc that renders
/// the one to the other with a gain. It is made on any thread; start, stop and destruction after a
/// start happen on the taps queue. The services outlive it.
class AppTap {
 public:
  /// Touches nothing yet. The state holds the gain to begin with; the IO block keeps it alive.
  AppTap(AudioProperties& properties, AudioGraph& graph, Clock& clock, TapDesign design,
         std::shared_ptr<SerialQueue> queue, std::shared_ptr<RenderState> state);
  AppTap(const AppTap&) = delete;
  AppTap& operator=(const AppTap&) = delete;
  ~AppTap() { stop(); }

  /// Builds and starts everything. On failure it logs why, returns false and leaves what it has
  /// made to stop().
  bool start(AudioObjectID outputDevice);

  /// Takes everything down, the tap last, so that the app is never silenced without being played.
  /// At any time and more than once.
  void stop();

  const TapDesign& design() const { return design_; }
  RenderState& state() { return *state_; }

 private:
  bool createTap(std::string& tapUUID);
  bool createAggregate(const std::string& tapUUID, const PlaybackDevices& playback);
  bool createIOProc();
  void setSmallBuffer();
  void disableUnusedInputs(AudioDeviceIOProcID procID, std::int64_t skipCount);
  void logLatency(AudioObjectID outputDevice);

  AudioProperties& properties_;
  AudioGraph& graph_;
  Clock& clock_;
  const TapDesign design_;
  AudioObjectID tapID_ = 0;
  AudioObjectID aggregateID_ = 0;
  AudioDeviceIOProcID procID_ = nullptr;
  const std::shared_ptr<SerialQueue> queue_;
  const std::shared_ptr<RenderState> state_;
};

}  // namespace plemora
