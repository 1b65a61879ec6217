#include "adapters/linux/pipewire/pipewire_properties.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

#include "adapters/linux/pipewire/property_table.h"
#include "adapters/linux/pipewire/sink_identity.h"
#include "platform/audio_constants.h"

namespace plemora {

namespace {

// The bytes of a value that is no text.
std::optional<std::vector<char>> bytesOf(const PropertyValue& value) {
  return std::visit(
      [](const auto& held) -> std::optional<std::vector<char>> {
        using Held = std::decay_t<decltype(held)>;
        if constexpr (std::is_same_v<Held, std::string>) {
          return std::nullopt;
        } else if constexpr (std::is_same_v<Held, std::vector<AudioObjectID>>) {
          std::vector<char> bytes(held.size() * sizeof(AudioObjectID));
          std::copy_n(reinterpret_cast<const char*>(held.data()), bytes.size(), bytes.begin());
          return bytes;
        } else {
          std::vector<char> bytes(sizeof(held));
          std::memcpy(bytes.data(), &held, sizeof(held));
          return bytes;
        }
      },
      value);
}

template <typename Value>
std::optional<Value> valueOf(std::size_t size, const void* bytes) {
  if (size != sizeof(Value) || bytes == nullptr) {
    return std::nullopt;
  }
  Value value;
  std::memcpy(&value, bytes, sizeof(value));
  return value;
}

bool isVolume(FourCharCode selector) {
  return selector == kAudioHardwareServiceDeviceProperty_VirtualMainVolume ||
         selector == kAudioDevicePropertyVolumeScalar || selector == kAudioDevicePropertyMute;
}

bool isDefaultDevice(FourCharCode selector) {
  return selector == kAudioHardwarePropertyDefaultOutputDevice ||
         selector == kAudioHardwarePropertyDefaultSystemOutputDevice;
}

}  // namespace

OSStatus PipeWireProperties::dataSize(AudioObjectID object,
                                      const AudioObjectPropertyAddress& address,
                                      std::size_t& size) {
  const PipeWireLoop::Lock lock(connection_.loop());
  if (!isKnownObject(connection_.objects(), own_, object)) {
    return kAudioHardwareBadObjectError;
  }
  const auto value = readProperty(connection_.objects(), own_, object, address);
  const auto bytes = value ? bytesOf(*value) : std::nullopt;
  if (!bytes) {
    return kAudioHardwareUnknownPropertyError;
  }
  size = bytes->size();
  return noErr;
}

OSStatus PipeWireProperties::data(AudioObjectID object, const AudioObjectPropertyAddress& address,
                                  std::size_t& size, void* value) {
  const PipeWireLoop::Lock lock(connection_.loop());
  if (!isKnownObject(connection_.objects(), own_, object)) {
    return kAudioHardwareBadObjectError;
  }
  const auto read = readProperty(connection_.objects(), own_, object, address);
  const auto bytes = read ? bytesOf(*read) : std::nullopt;
  if (!bytes) {
    return kAudioHardwareUnknownPropertyError;
  }
  const bool isList = std::holds_alternative<std::vector<AudioObjectID>>(*read);
  if (!isList && size < bytes->size()) {
    return kAudioHardwareBadPropertySizeError;
  }
  size = std::min(size, bytes->size());
  std::copy_n(bytes->data(), size, static_cast<char*>(value));
  return noErr;
}

OSStatus PipeWireProperties::string(AudioObjectID object, const AudioObjectPropertyAddress& address,
                                    std::optional<std::string>& value) {
  const PipeWireLoop::Lock lock(connection_.loop());
  if (!isKnownObject(connection_.objects(), own_, object)) {
    return kAudioHardwareBadObjectError;
  }
  auto read = readProperty(connection_.objects(), own_, object, address);
  if (!read || !std::holds_alternative<std::string>(*read)) {
    return kAudioHardwareUnknownPropertyError;
  }
  value = std::get<std::string>(std::move(*read));
  return noErr;
}

std::optional<bool> PipeWireProperties::isSettable(AudioObjectID object,
                                                   const AudioObjectPropertyAddress& address) {
  const PipeWireLoop::Lock lock(connection_.loop());
  if (!readProperty(connection_.objects(), own_, object, address)) {
    return std::nullopt;
  }
  return object == kAudioObjectSystemObject
             ? isDefaultDevice(address.mSelector)
             : connection_.objects().sinks().contains(object) && isVolume(address.mSelector);
}

OSStatus PipeWireProperties::setData(AudioObjectID object,
                                     const AudioObjectPropertyAddress& address, std::size_t size,
                                     const void* value) {
  const PipeWireLoop::Lock lock(connection_.loop());
  if (!isKnownObject(connection_.objects(), own_, object)) {
    return kAudioHardwareBadObjectError;
  }
  if (!isSettable(object, address).value_or(false)) {
    return kAudioHardwareUnknownPropertyError;
  }
  const auto& sinks = connection_.objects().sinks();
  if (object != kAudioObjectSystemObject) {
    return setVolume(sinks.at(object), address.mSelector, size, value);
  }
  const auto id = valueOf<AudioObjectID>(size, value);
  if (!id) {
    return kAudioHardwareBadPropertySizeError;
  }
  const auto sink = sinks.find(*id);
  if (sink == sinks.end()) {
    return kAudioHardwareBadDeviceError;
  }
  // There is one default for all sounds; alerts follow it by themselves.
  if (address.mSelector == kAudioHardwarePropertyDefaultSystemOutputDevice) {
    return noErr;
  }
  GraphMirror* mirror = connection_.mirror();
  return mirror != nullptr && mirror->setDefaultSink(sink->second.uid)
             ? noErr
             : kAudioHardwareUnspecifiedError;
}

OSStatus PipeWireProperties::setVolume(const SinkObject& sink, FourCharCode selector,
                                       std::size_t size, const void* value) {
  GraphMirror* mirror = connection_.mirror();
  if (mirror == nullptr || !sink.volume) {
    return kAudioHardwareUnspecifiedError;
  }
  VolumeState wanted = *sink.volume;
  if (selector == kAudioDevicePropertyMute) {
    const auto muted = valueOf<std::uint32_t>(size, value);
    if (!muted) {
      return kAudioHardwareBadPropertySizeError;
    }
    wanted.muted = *muted != 0;
  } else {
    const auto slider = valueOf<float>(size, value);
    if (!slider) {
      return kAudioHardwareBadPropertySizeError;
    }
    if (std::isnan(*slider)) {
      return kAudioHardwareIllegalOperationError;
    }
    wanted = withSlider(std::move(wanted), std::clamp(*slider, 0.0f, 1.0f));
  }
  // The card's route holds the volume of its sinks; a sink without a card holds its own.
  const PropertyMap& properties = mirror->nodes().at(sink.nodeId).properties;
  const std::uint32_t cardId = numberOf(properties, "device.id");
  const auto card = mirror->cards().find(cardId);
  const RouteRecord* route =
      card == mirror->cards().end() ? nullptr : routeOf(properties, &card->second);
  const bool done = route != nullptr && !route->volume.channelVolumes.empty()
                        ? mirror->setRouteVolume(cardId, RouteRecord(*route), wanted)
                        : mirror->setNodeVolume(sink.nodeId, wanted);
  return done ? noErr : kAudioHardwareUnspecifiedError;
}

OSStatus PipeWireProperties::addListener(AudioObjectID object,
                                         const AudioObjectPropertyAddress& address,
                                         std::weak_ptr<AudioListenerBlock> block) {
  const PipeWireLoop::Lock lock(connection_.loop());
  if (!isKnownObject(connection_.objects(), own_, object)) {
    return kAudioHardwareBadObjectError;
  }
  listeners_.add(object, address, std::move(block));
  return noErr;
}

OSStatus PipeWireProperties::removeListener(AudioObjectID object,
                                            const AudioObjectPropertyAddress& address,
                                            const std::shared_ptr<AudioListenerBlock>& block) {
  listeners_.remove(object, address, block);
  return noErr;
}

}  // namespace plemora
