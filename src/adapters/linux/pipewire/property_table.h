#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "adapters/linux/pipewire/audio_objects.h"
#include "adapters/linux/pipewire/private_objects.h"

namespace plemora {

using PropertyValue = std::variant<std::uint32_t, float, double, std::vector<AudioObjectID>,
                                   std::string, AudioStreamBasicDescription>;

/// Whether there is an object of that id.
bool isKnownObject(const AudioObjects& objects, const PrivateObjects& own, AudioObjectID object);

/// The value of a property; none when the object is not there or has no such property.
std::optional<PropertyValue> readProperty(const AudioObjects& objects, const PrivateObjects& own,
                                          AudioObjectID object,
                                          const AudioObjectPropertyAddress& address);

}  // namespace plemora
