#pragma once

#include <functional>
#include <memory>

#include "platform/audio_graph.h"
#include "platform/audio_properties.h"
#include "platform/consent_service.h"
#include "platform/main_queue.h"

namespace plemora {

class ClientDirectory;

/// The sound server PipeWire as audio hardware: its sinks are devices, its clients with output
/// streams are processes, and a started IO proc is a correction beside the direct path of the
/// tapped app. Connects by itself and again after a restart of the server; while there is no
/// server, all lists are empty and every write fails.
///
/// Created and destroyed on the main thread. Runs one thread of its own for the server's events
/// and one real-time thread for the IO blocks; neither wakes up while nothing happens.
class PipeWireAudio {
 public:
  /// Reads PIPEWIRE_RUNTIME_DIR, XDG_RUNTIME_DIR and PIPEWIRE_REMOTE as every client does. The
  /// directory learns what the server's clients say of themselves. Both must outlive this object.
  PipeWireAudio(MainQueue& mainQueue, ClientDirectory& directory);
  ~PipeWireAudio();

  AudioProperties& properties();
  AudioGraph& graph();

  /// "Allowed" while this program may see other clients and link to them; else undecided.
  ConsentService& consent();

  /// Whether a server answers. Any thread.
  bool isConnected() const;

  /// Called on the main thread after each change of isConnected.
  void setConnectionHandler(std::function<void(bool connected)> handler);

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace plemora
