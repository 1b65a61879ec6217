#include "adapters/linux/pipewire/sink_identity.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string_view>

#include "base/text.h"

namespace plemora {

namespace {

const std::string& firstOf(const PropertyMap& sink, const CardRecord* card, const char* key) {
  const std::string& own = propertyOf(sink, key);
  return own.empty() && card != nullptr ? propertyOf(card->properties, key) : own;
}

bool contains(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

// HDMI and DisplayPort share one ALSA driver, which tells them apart by nothing; the profile, the
// path and the route all name it HDMI.
bool isDisplay(const PropertyMap& sink, const CardRecord* card, const RouteRecord* route) {
  return (route != nullptr && (route->portType == "hdmi" || contains(route->name, "hdmi"))) ||
         contains(propertyOf(sink, "api.alsa.path"), "hdmi") ||
         contains(propertyOf(sink, "device.profile.name"), "hdmi") ||
         contains(firstOf(sink, card, "device.form-factor"), "tv");
}

bool isDisplayPort(const RouteRecord* route) {
  return route != nullptr &&
         (route->portType == "displayport" || contains(lowercased(route->name), "displayport"));
}

}  // namespace

FourCharCode transportOf(const PropertyMap& sink, const CardRecord* card,
                         const RouteRecord* route) {
  const std::string& api = firstOf(sink, card, "device.api");
  const std::string& bus = firstOf(sink, card, "device.bus");
  const std::string& name = propertyOf(sink, "node.name");
  if (name.starts_with("raop_sink") || !propertyOf(sink, "raop.ip").empty() ||
      !propertyOf(sink, "raop.hostname").empty()) {
    return kAudioDeviceTransportTypeAirPlay;
  }
  if (api == "bluez5" || bus == "bluetooth") {
    return contains(propertyOf(sink, "api.bluez5.profile"), "bap")
               ? kAudioDeviceTransportTypeBluetoothLE
               : kAudioDeviceTransportTypeBluetooth;
  }
  if (api == "alsa" || !bus.empty()) {
    if (isDisplayPort(route)) {
      return kAudioDeviceTransportTypeDisplayPort;
    }
    if (isDisplay(sink, card, route)) {
      return kAudioDeviceTransportTypeHDMI;
    }
    if (bus == "usb") {
      return kAudioDeviceTransportTypeUSB;
    }
    if (bus == "firewire") {
      return kAudioDeviceTransportTypeFireWire;
    }
    if (bus == "thunderbolt") {
      return kAudioDeviceTransportTypeThunderbolt;
    }
    return kAudioDeviceTransportTypeBuiltIn;
  }
  if (propertyOf(sink, "node.virtual") == "true" ||
      propertyOf(sink, "factory.name") == "support.null-audio-sink" ||
      !propertyOf(sink, "pulse.module.id").empty()) {
    return kAudioDeviceTransportTypeVirtual;
  }
  return kAudioDeviceTransportTypeUnknown;
}

std::optional<FourCharCode> dataSourceOf(const RouteRecord* route) {
  if (route == nullptr) {
    return std::nullopt;
  }
  const std::string name = lowercased(route->name);
  if (route->portType == "headphones" || route->portType == "headset" ||
      contains(name, "headphone") || contains(name, "headset")) {
    return kAudioDataSourceHeadphones;
  }
  if (route->portType == "speaker" || contains(name, "speaker")) {
    return kAudioDataSourceInternalSpeaker;
  }
  return std::nullopt;
}

bool isHiddenSink(const PropertyMap& sink) {
  return propertyOf(sink, "node.hidden") == "true" || propertyOf(sink, "device.hidden") == "true" ||
         propertyOf(sink, "node.disabled") == "true";
}

const RouteRecord* routeOf(const PropertyMap& sink, const CardRecord* card) {
  const std::string& text = propertyOf(sink, "card.profile.device");
  std::int32_t device = -1;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), device);
  if (card == nullptr || error != std::errc{} || end != text.data() + text.size()) {
    return nullptr;
  }
  const auto found = std::find_if(card->routes.begin(), card->routes.end(),
                                  [&](const RouteRecord& route) { return route.device == device; });
  return found == card->routes.end() ? nullptr : &*found;
}

float sliderOf(const VolumeState& volume) {
  if (volume.channelVolumes.empty()) {
    return 0.0f;
  }
  const float loudest =
      *std::max_element(volume.channelVolumes.begin(), volume.channelVolumes.end());
  return std::clamp(std::cbrt(loudest), 0.0f, 1.0f);
}

VolumeState withSlider(VolumeState volume, float slider) {
  const float target = slider * slider * slider;
  float loudest = 0.0f;
  for (const float channel : volume.channelVolumes) {
    loudest = std::max(loudest, channel);
  }
  for (float& channel : volume.channelVolumes) {
    channel = loudest > 0.0f ? channel * (target / loudest) : target;
  }
  return volume;
}

}  // namespace plemora
