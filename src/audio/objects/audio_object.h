#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

#include "platform/audio_constants.h"
#include "platform/audio_properties.h"

namespace plemora {

/// Typed reads and writes of one audio object's properties, main element. A value, free to copy;
/// the AudioProperties must outlive it. Any thread but a real-time one. Nothing throws or logs:
/// what cannot be read is none, or empty.
class AudioObject {
 public:
  AudioObject(AudioProperties& properties, AudioObjectID id) : properties_(&properties), id_(id) {}

  AudioObjectID id() const { return id_; }

  /// A value of fixed size (UInt32, Float32, Float64 or a record of these); none unless the read
  /// succeeded.
  template <typename Value>
  std::optional<Value> readValue(AudioObjectPropertySelector selector,
                                 AudioObjectPropertyScope scope) const {
    static_assert(std::is_trivially_copyable_v<Value>);
    Value value{};
    std::size_t size = sizeof(Value);
    if (properties_->data(id_, {selector, scope, kAudioObjectPropertyElementMain}, size, &value) !=
        noErr) {
      return std::nullopt;
    }
    return value;
  }

  /// A text; none when it cannot be read or the property has none.
  std::optional<std::string> getString(AudioObjectPropertySelector selector,
                                       AudioObjectPropertyScope scope) const;

  /// A sequence of object ids; empty when it cannot be read.
  std::vector<AudioObjectID> getArray(
      AudioObjectPropertySelector selector, AudioObjectPropertyScope scope,
      AudioObjectPropertyElement element = kAudioObjectPropertyElementMain) const;

  /// Writes a value of fixed size and returns the status.
  template <typename Value>
  OSStatus write(AudioObjectPropertySelector selector, AudioObjectPropertyScope scope,
                 const Value& value) const {
    static_assert(std::is_trivially_copyable_v<Value>);
    return properties_->setData(id_, {selector, scope, kAudioObjectPropertyElementMain},
                                sizeof(Value), &value);
  }

 private:
  AudioProperties* properties_;  // not owned, never null
  AudioObjectID id_;
};

}  // namespace plemora
