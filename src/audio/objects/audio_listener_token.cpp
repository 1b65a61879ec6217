#include "audio/objects/audio_listener_token.h"

#include <utility>

#include "platform/audio_constants.h"

namespace plemora {

AudioListenerToken::AudioListenerToken(AudioProperties& properties, AudioObjectID object,
                                       AudioObjectPropertyAddress address,
                                       std::shared_ptr<AudioListenerBlock> block)
    : properties_(&properties), object_(object), address_(address), block_(std::move(block)) {}

AudioListenerToken& AudioListenerToken::operator=(AudioListenerToken&& other) noexcept {
  if (this != &other) {
    unregister();
    properties_ = other.properties_;
    object_ = other.object_;
    address_ = other.address_;
    block_ = std::move(other.block_);
  }
  return *this;
}

AudioListenerToken::~AudioListenerToken() {
  unregister();
}

void AudioListenerToken::unregister() {
  if (block_) {
    properties_->removeListener(object_, address_, block_);
    block_.reset();
  }
}

std::optional<AudioListenerToken> listen(AudioProperties& properties, AudioObjectID object,
                                         AudioObjectPropertySelector selector,
                                         AudioObjectPropertyScope scope,
                                         AudioObjectPropertyElement element,
                                         std::function<void()> callback) {
  const AudioObjectPropertyAddress address{selector, scope, element};
  auto block = std::make_shared<AudioListenerBlock>(
      [callback = std::move(callback)](std::span<const AudioObjectPropertyAddress>) {
        callback();
      });
  if (properties.addListener(object, address, block) != noErr) {
    return std::nullopt;
  }
  return AudioListenerToken(properties, object, address, std::move(block));
}

}  // namespace plemora
