#pragma once

#include <charconv>
#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace plemora {

/// Properties of an object of the server, as text.
using PropertyMap = std::map<std::string, std::string, std::less<>>;

/// Value of a property, or the empty string.
inline const std::string& propertyOf(const PropertyMap& properties, std::string_view key) {
  static const std::string none;
  const auto found = properties.find(key);
  return found == properties.end() ? none : found->second;
}

/// The number at the start of a property's value, or 0. Ids of the server's objects are never 0.
inline std::uint32_t numberOf(const PropertyMap& properties, std::string_view key) {
  const std::string& text = propertyOf(properties, key);
  std::uint32_t number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

/// Volume and mute as the server holds them: linear factors, one per channel.
struct VolumeState {
  std::vector<float> channelVolumes;
  bool muted = false;
  bool operator==(const VolumeState&) const = default;
};

/// The active output of a sound card for one of its profile devices (a Route).
struct RouteRecord {
  std::int32_t index = -1;
  std::int32_t device = -1;  ///< matches a sink's "card.profile.device"
  std::string name;
  std::string portType;  ///< "speaker", "headphones", "hdmi" ...; empty when unknown
  VolumeState volume;
};

enum class NodeKind { stream, sink, other };

/// Seconds, on the clock that all media times here are of.
inline double mediaTime() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

// Records of the server's objects, keyed by their global id in GraphMirror.

// The server gives an id again at once: `serial` tells two objects with the same id apart.

struct ClientRecord {
  std::uint64_t serial = 0;  ///< rises with each object that appears
  double since = 0;          ///< media time of its appearance
  PropertyMap properties;
  bool isComplete = false;  ///< the full properties have arrived, not only the announced ones
};

struct NodeRecord {
  NodeKind kind = NodeKind::other;
  std::uint32_t clientId = 0;
  bool isRunning = false;
  PropertyMap properties;
  std::optional<VolumeState> volume;
  std::uint64_t serial = 0;
};

struct PortRecord {
  std::uint32_t nodeId = 0;
  std::uint32_t index = 0;  ///< "port.id": position among the ports of its node and direction
  bool isInput = false;
  bool isMonitor = false;
  bool isControl = false;  ///< MIDI or control data, no samples
  std::string name;
  std::string channel;  ///< "FL", "MONO" ...
};

struct LinkRecord {
  std::uint32_t outputNode = 0;
  std::uint32_t outputPort = 0;
  std::uint32_t inputNode = 0;
  std::uint32_t inputPort = 0;
  bool wasActive = false;  ///< has carried samples since it was made
  std::uint64_t serial = 0;
  double since = 0;  ///< media time of its appearance
};

struct CardRecord {
  PropertyMap properties;
  std::vector<RouteRecord> routes;
};

}  // namespace plemora
