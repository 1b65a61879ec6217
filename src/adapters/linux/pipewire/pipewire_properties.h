#pragma once

#include "adapters/linux/pipewire/listener_registry.h"
#include "adapters/linux/pipewire/pipewire_connection.h"
#include "adapters/linux/pipewire/private_objects.h"
#include "platform/audio_properties.h"

namespace plemora {

/// The server's graph, and this program's own taps and aggregate devices, as properties by
/// address. One table says what each kind of object has; what is not in it is refused.
class PipeWireProperties : public AudioProperties {
 public:
  PipeWireProperties(PipeWireConnection& connection, PrivateObjects& own,
                     ListenerRegistry& listeners)
      : connection_(connection), own_(own), listeners_(listeners) {}

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

 private:
  OSStatus setVolume(const SinkObject& sink, FourCharCode selector, std::size_t size,
                     const void* value);

  PipeWireConnection& connection_;
  PrivateObjects& own_;
  ListenerRegistry& listeners_;
};

}  // namespace plemora
