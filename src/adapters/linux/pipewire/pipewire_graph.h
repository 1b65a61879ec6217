#pragma once

#include "adapters/linux/pipewire/pipewire_connection.h"
#include "adapters/linux/pipewire/private_objects.h"
#include "platform/audio_graph.h"

namespace plemora {

/// Taps, aggregate devices and IO procs on the server's graph: started IO procs become
/// corrections. Any thread but the real-time and the loop's own. An IO proc that is stopped just
/// after the default sink has changed plays on for a moment, so that its successor can take over
/// without a gap; its block keeps what it uses alive.
class PipeWireGraph : public AudioGraph {
 public:
  PipeWireGraph(PipeWireConnection& connection, PrivateObjects& objects)
      : connection_(connection), objects_(objects) {}

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
  IOProcRecord* find(AudioObjectID device, AudioDeviceIOProcID proc);
  void stopCorrection(IOProcRecord& record);

  PipeWireConnection& connection_;
  PrivateObjects& objects_;
};

}  // namespace plemora
