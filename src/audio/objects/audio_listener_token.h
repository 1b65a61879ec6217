#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "platform/audio_properties.h"

namespace plemora {

/// Owns one registered property listener: dropping it ends the listening, also from inside the
/// callback itself. Movable; main thread only. The AudioProperties must outlive it.
class AudioListenerToken {
 public:
  AudioListenerToken(AudioListenerToken&&) noexcept = default;
  AudioListenerToken& operator=(AudioListenerToken&& other) noexcept;
  AudioListenerToken(const AudioListenerToken&) = delete;
  AudioListenerToken& operator=(const AudioListenerToken&) = delete;
  ~AudioListenerToken();

  AudioObjectID object() const { return object_; }
  const AudioObjectPropertyAddress& address() const { return address_; }

 private:
  friend std::optional<AudioListenerToken> listen(AudioProperties&, AudioObjectID,
                                                  AudioObjectPropertySelector,
                                                  AudioObjectPropertyScope,
                                                  AudioObjectPropertyElement,
                                                  std::function<void()>);

  AudioListenerToken(AudioProperties& properties, AudioObjectID object,
                     AudioObjectPropertyAddress address, std::shared_ptr<AudioListenerBlock> block);
  void unregister();

  AudioProperties* properties_;  // not owned, never null
  AudioObjectID object_;
  AudioObjectPropertyAddress address_;
  std::shared_ptr<AudioListenerBlock> block_;  // the only strong reference; null once moved from
};

/// Calls the callback on the main thread after each change of the property, for as long as the
/// token lives. None, and no calls, when the registration failed.
[[nodiscard]] std::optional<AudioListenerToken> listen(AudioProperties& properties,
                                                       AudioObjectID object,
                                                       AudioObjectPropertySelector selector,
                                                       AudioObjectPropertyScope scope,
                                                       AudioObjectPropertyElement element,
                                                       std::function<void()> callback);

}  // namespace plemora
