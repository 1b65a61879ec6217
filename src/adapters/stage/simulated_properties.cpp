#include <algorithm>
#include <cstring>
#include <utility>

#include "adapters/stage/hal_properties.h"
#include "adapters/stage/simulated_hal.h"

namespace plemora {

OSStatus SimulatedHal::dataSize(AudioObjectID object, const AudioObjectPropertyAddress& address,
                                std::size_t& size) {
  const auto verdict = faults_.enter(HalCall::dataSize, object, address.mSelector);
  if (verdict.status != noErr || verdict.yieldsNothing) {
    size = verdict.yieldsNothing ? 0 : size;
    return verdict.status;
  }
  HalValue value;
  const OSStatus status = read(object, address, {}, value);
  if (status == noErr) {
    const auto* bytes = std::get_if<std::vector<std::byte>>(&value);
    size = bytes ? bytes->size() : sizeof(void*);
  }
  return status;
}

OSStatus SimulatedHal::data(AudioObjectID object, const AudioObjectPropertyAddress& address,
                            std::size_t& size, void* value) {
  const auto verdict = faults_.enter(HalCall::data, object, address.mSelector);
  if (verdict.status != noErr || verdict.yieldsNothing) {
    size = verdict.yieldsNothing ? 0 : size;
    return verdict.status;
  }
  HalValue result;
  const OSStatus status =
      read(object, address, {static_cast<const std::byte*>(value), size}, result);
  if (status != noErr) {
    return status;
  }
  const auto* bytes = std::get_if<std::vector<std::byte>>(&result);
  if (!bytes) {
    return kAudioHardwareBadPropertySizeError;
  }
  size = std::min(size, bytes->size());
  if (size > 0) {
    std::memcpy(value, bytes->data(), size);
  }
  return noErr;
}

OSStatus SimulatedHal::string(AudioObjectID object, const AudioObjectPropertyAddress& address,
                              std::optional<std::string>& value) {
  const auto verdict = faults_.enter(HalCall::string, object, address.mSelector);
  if (verdict.status != noErr || verdict.yieldsNothing) {
    return verdict.status;
  }
  HalValue result;
  const OSStatus status = read(object, address, {}, result);
  if (status != noErr) {
    return status;
  }
  const auto* text = std::get_if<std::optional<std::string>>(&result);
  if (!text) {
    return kAudioHardwareBadPropertySizeError;
  }
  if (*text) {
    value = *text;
  }
  return noErr;
}

OSStatus SimulatedHal::read(AudioObjectID object, const AudioObjectPropertyAddress& address,
                            std::span<const std::byte> given, HalValue& value) const {
  const std::lock_guard lock(mutex_);
  if (!state_.exists(object)) {
    return kAudioHardwareBadObjectError;
  }
  const HalProperty* property = findHalProperty(state_, object, address);
  auto result = property ? property->read(state_, object, address.mScope, given) : std::nullopt;
  if (!result) {
    return kAudioHardwareUnknownPropertyError;
  }
  value = std::move(*result);
  return noErr;
}

OSStatus SimulatedHal::setData(AudioObjectID object, const AudioObjectPropertyAddress& address,
                               std::size_t size, const void* value) {
  const auto verdict = faults_.enter(HalCall::setData, object, address.mSelector);
  if (verdict.status != noErr || verdict.yieldsNothing) {
    return verdict.status;
  }
  return change({object}, [&](HalState& state) {
    if (!state.exists(object)) {
      return kAudioHardwareBadObjectError;
    }
    const HalProperty* property = findHalProperty(state, object, address);
    if (!property || !property->read(state, object, address.mScope, {})) {
      return kAudioHardwareUnknownPropertyError;
    }
    if (!property->write || (property->isSettable && !property->isSettable(state, object))) {
      return kAudioHardwareUnsupportedOperationError;
    }
    return property->write(state, object, address.mScope,
                           {static_cast<const std::byte*>(value), size});
  });
}

std::optional<bool> SimulatedHal::isSettable(AudioObjectID object,
                                             const AudioObjectPropertyAddress& address) {
  const auto verdict = faults_.enter(HalCall::isSettable, object, address.mSelector);
  if (verdict.status != noErr || verdict.yieldsNothing) {
    return std::nullopt;
  }
  const std::lock_guard lock(mutex_);
  const HalProperty* property = findHalProperty(state_, object, address);
  if (!property || !property->read(state_, object, address.mScope, {})) {
    return std::nullopt;
  }
  return property->write && (!property->isSettable || property->isSettable(state_, object));
}

OSStatus SimulatedHal::addListener(AudioObjectID object, const AudioObjectPropertyAddress& address,
                                   std::weak_ptr<AudioListenerBlock> block) {
  const auto verdict = faults_.enter(HalCall::addListener, object, address.mSelector);
  if (verdict.status != noErr) {
    return verdict.status;
  }
  {
    const std::lock_guard lock(mutex_);
    if (!state_.exists(object)) {
      return kAudioHardwareBadObjectError;
    }
  }
  listeners_->add(object, address, std::move(block));
  return noErr;
}

OSStatus SimulatedHal::removeListener(AudioObjectID object,
                                      const AudioObjectPropertyAddress& address,
                                      const std::shared_ptr<AudioListenerBlock>& block) {
  const auto verdict = faults_.enter(HalCall::removeListener, object, address.mSelector);
  const bool wasRegistered = listeners_->remove(object, address, block);
  if (verdict.status != noErr) {
    return verdict.status;
  }
  return wasRegistered ? noErr : kAudioHardwareIllegalOperationError;
}

}  // namespace plemora
