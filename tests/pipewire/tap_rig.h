#pragma once

#include <sys/types.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "adapters/linux/desktop/client_directory.h"
#include "adapters/linux/desktop/qt_main_queue.h"
#include "adapters/linux/desktop/system_clock.h"
#include "adapters/linux/desktop/thread_queue.h"
#include "adapters/linux/pipewire/pipewire_audio.h"
#include "audio/app_tap.h"
#include "support/pipewire/player.h"
#include "support/pipewire/private_session.h"
#include "support/pipewire/sink_recorder.h"

class QCoreApplication;

namespace plemora::rig {

/// A private session with two sinks, and the back end in this process with taps made by hand: the
/// quick way to see what one tap does to the samples. This thread is the main thread.
class TapRig {
 public:
  explicit TapRig(int quantum = 1024);
  ~TapRig();

  /// As rig::eventually, while the main queue runs.
  bool eventually(double seconds, const std::function<bool()>& question);

  /// The process object of a client with that PID, 0 when none comes in time.
  AudioObjectID processOf(pid_t pid);
  /// UID of the device that stands for the sink; empty when there is none.
  std::string uidOf(const std::string& sink);
  /// UIDs of the devices that the process plays to.
  std::vector<std::string> devicesOf(AudioObjectID process);
  AudioObjectID deviceOf(const std::string& sink);

  /// From here on taps are made in this graph, one that stands before the back end's.
  void setGraph(AudioGraph& graph) { graph_ = &graph; }
  /// A tap of the player's process, started, that plays it on the sink with the gain. Null when it
  /// does not start.
  std::unique_ptr<AppTap> tap(const TonePlayer& player, float gain,
                              const std::string& output = "first",
                              const std::string& source = "first");

  /// A tone player whose streams all reach the sink.
  std::unique_ptr<TonePlayer> play(const ToneOptions& options, const std::string& sink = "first");

  /// Waits until the last frame of what the recorder hears on channel 0 has that value.
  bool hears(SinkRecorder& recorder, float value, double seconds = 10);

  PipeWireAudio& audio() { return *audio_; }

  PrivateSession session;

 private:
  std::unique_ptr<QCoreApplication> application_;
  std::unique_ptr<QtMainQueue> mainQueue_;
  std::unique_ptr<ClientDirectory> clients_;
  std::unique_ptr<PipeWireAudio> audio_;
  SystemClock clock_;
  ThreadQueueFactory queues_;
  AudioGraph* graph_ = nullptr;
};

}  // namespace plemora::rig
