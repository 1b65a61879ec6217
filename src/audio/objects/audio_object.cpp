#include "audio/objects/audio_object.h"

#include <algorithm>
#include <cstring>

namespace plemora {

std::optional<std::string> AudioObject::getString(AudioObjectPropertySelector selector,
                                                  AudioObjectPropertyScope scope) const {
  std::optional<std::string> text;
  if (properties_->string(id_, {selector, scope, kAudioObjectPropertyElementMain}, text) != noErr) {
    return std::nullopt;
  }
  return text;
}

std::vector<AudioObjectID> AudioObject::getArray(AudioObjectPropertySelector selector,
                                                 AudioObjectPropertyScope scope,
                                                 AudioObjectPropertyElement element) const {
  const AudioObjectPropertyAddress address{selector, scope, element};
  std::size_t size = 0;
  if (properties_->dataSize(id_, address, size) != noErr || size == 0) {
    return {};
  }
  std::vector<std::byte> bytes(size);
  if (properties_->data(id_, address, size, bytes.data()) != noErr ||
      size < sizeof(AudioObjectID)) {
    return {};
  }
  // The list may have become shorter between the two reads; a trailing partial word is dropped.
  std::vector<AudioObjectID> ids(std::min(size, bytes.size()) / sizeof(AudioObjectID));
  std::memcpy(ids.data(), bytes.data(), ids.size() * sizeof(AudioObjectID));
  return ids;
}

}  // namespace plemora
