#pragma once

#include <spa/pod/pod.h>

#include <cstdint>
#include <optional>
#include <vector>

#include "adapters/linux/pipewire/graph_records.h"

namespace plemora {

/// Reads the volume of a Props object; none when it holds no channel volumes.
std::optional<VolumeState> parseVolume(const spa_pod* props);

/// Reads a Route object; none when it is not an output route.
std::optional<RouteRecord> parseRoute(const spa_pod* route);

/// The bytes of a Props object that sets volume and mute; aligned as a pod asks for.
std::vector<std::uint64_t> buildVolume(const VolumeState& volume);

/// The bytes of a Route object that sets volume and mute of a card's active route, to be
/// remembered by the session manager as the desktop's own slider would be.
std::vector<std::uint64_t> buildRouteVolume(const RouteRecord& route, const VolumeState& volume);

}  // namespace plemora
