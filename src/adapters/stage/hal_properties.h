#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "adapters/stage/simulated_object.h"

namespace plemora {

/// The bytes of a value, or a text that may be missing.
using HalValue = std::variant<std::vector<std::byte>, std::optional<std::string>>;

/// One row of the table of properties: which objects have it, how it is read and written.
struct HalProperty {
  enum class Owner { system, process, device, tap };

  Owner owner{};
  AudioObjectPropertySelector selector = 0;
  AudioObjectPropertyScope scope = 0;
  /// None: this object has no such property. The bytes given are those of the caller's buffer.
  std::optional<HalValue> (*read)(const HalState& state, AudioObjectID object,
                                  AudioObjectPropertyScope scope,
                                  std::span<const std::byte> given) = nullptr;
  /// Null: it cannot be written.
  OSStatus (*write)(HalState& state, AudioObjectID object, AudioObjectPropertyScope scope,
                    std::span<const std::byte> value) = nullptr;
  /// Null: whatever can be written is settable.
  bool (*isSettable)(const HalState& state, AudioObjectID object) = nullptr;
};

/// The row for an address of an object; null when there is none.
const HalProperty* findHalProperty(const HalState& state, AudioObjectID object,
                                   const AudioObjectPropertyAddress& address);

/// Every value that listeners may watch on an object, by address, to find what a change changed.
std::vector<std::pair<AudioObjectPropertyAddress, HalValue>> halValues(const HalState& state,
                                                                       AudioObjectID object);

}  // namespace plemora
