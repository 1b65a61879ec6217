#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "platform/audio_types.h"

namespace plemora {

/// Called on the main thread with the addresses that changed.
using AudioListenerBlock = std::function<void(std::span<const AudioObjectPropertyAddress>)>;

/// Properties of audio objects, by address. Reads and writes may be made from any thread but a
/// real-time one; they may block for the time of a round trip. No call throws: what fails returns
/// a status other than noErr and leaves its results alone. No qualifier data is ever passed.
class AudioProperties {
 public:
  virtual ~AudioProperties() = default;

  /// Size of the value in bytes.
  virtual OSStatus dataSize(AudioObjectID object, const AudioObjectPropertyAddress& address,
                            std::size_t& size) = 0;

  /// Fills at most size bytes of the (trivially copyable) value and stores how many in size.
  /// Values hold native-endian words: UInt32, Float32, Float64, records of these, or a sequence
  /// of object ids.
  virtual OSStatus data(AudioObjectID object, const AudioObjectPropertyAddress& address,
                        std::size_t& size, void* value) = 0;

  /// Reads a text value (UTF-8). noErr with nothing stored: the property exists but has no text.
  virtual OSStatus string(AudioObjectID object, const AudioObjectPropertyAddress& address,
                          std::optional<std::string>& value) = 0;

  virtual OSStatus setData(AudioObjectID object, const AudioObjectPropertyAddress& address,
                           std::size_t size, const void* value) = 0;

  /// None when the object has no such property.
  virtual std::optional<bool> isSettable(AudioObjectID object,
                                         const AudioObjectPropertyAddress& address) = 0;

  /// Calls the block on the main thread after each change of the property. The adapter holds it
  /// weakly: a block that has gone is never called. A block and its address are registered once.
  virtual OSStatus addListener(AudioObjectID object, const AudioObjectPropertyAddress& address,
                               std::weak_ptr<AudioListenerBlock> block) = 0;

  /// Ends a registration made with the same three arguments. Main thread; when it returns, the
  /// block is not called again. An object that has vanished is no error.
  virtual OSStatus removeListener(AudioObjectID object, const AudioObjectPropertyAddress& address,
                                  const std::shared_ptr<AudioListenerBlock>& block) = 0;
};

}  // namespace plemora
