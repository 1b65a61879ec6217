#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "adapters/linux/pipewire/audio_objects.h"
#include "adapters/linux/pipewire/correction_engine.h"
#include "adapters/linux/pipewire/graph_mirror.h"
#include "adapters/linux/pipewire/pipewire_loop.h"

namespace plemora {

/// The connection to the server, made again whenever a server is there: the mirror of its graph,
/// the audio objects in it, and the corrections. With the loop's lock held unless said otherwise.
class PipeWireConnection {
 public:
  /// Told on the loop's thread.
  struct Observer {
    std::function<void(const std::vector<ObjectChange>&)> objectsChanged;
    std::function<void(bool connected)> connectionChanged;
  };

  PipeWireConnection(PipeWireLoop& loop, ClientDirectory& directory, Observer observer);
  ~PipeWireConnection();

  /// Starts the thread and waits for the first answer of a server, at most a second. Without lock.
  void open();
  /// Without lock.
  void close();

  PipeWireLoop& loop() { return loop_; }
  AudioObjects& objects() { return objects_; }
  /// Null while there is no server.
  GraphMirror* mirror() { return mirror_.get(); }
  CorrectionEngine* engine() { return isReady_ ? engine_.get() : nullptr; }

  /// Counts connections, from 1; tells whether an engine is still the same.
  std::uint64_t number() const { return number_; }
  /// Any thread, without lock.
  bool isConnected() const { return connected_.load(); }
  /// Media time of the last change of the default sink.
  double defaultChangedAt() const { return defaultChangedAt_; }

  static double now();

 private:
  struct Disconnect {
    void operator()(pw_core* core) const { pw_core_disconnect(core); }
  };

  void tryConnect();
  void disconnect();
  void retryLater();
  void watchSocket();
  void answered(int sequence);
  void follow();

  PipeWireLoop& loop_;
  Observer observer_;
  AudioObjects objects_;
  std::unique_ptr<pw_core, Disconnect> core_;
  Hook coreHook_;
  std::unique_ptr<GraphMirror> mirror_;
  std::unique_ptr<CorrectionEngine> engine_;
  std::atomic<bool> connected_ = false;
  bool isReady_ = false;
  bool isLost_ = false;
  int syncsLeft_ = 0;
  std::uint64_t number_ = 0;
  int attempts_ = 0;
  AudioObjectID lastDefault_ = 0;
  double defaultChangedAt_ = -1e9;

  int inotify_ = -1;
  LoopSource changed_;
  LoopSource retry_;
  LoopSource grace_;
  LoopSource socket_;
};

}  // namespace plemora
