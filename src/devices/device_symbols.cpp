#include "devices/device_symbols.h"

#include <algorithm>
#include <array>

#include "audio/objects/audio_object.h"
#include "base/text.h"
#include "platform/audio_constants.h"

namespace plemora {

namespace {

struct NameRule {
  std::string_view part;
  std::string_view symbol;
};

// Names come before transports: a pair of AirPods is drawn as such however it is connected.
constexpr std::array<NameRule, 6> nameRules{{
    {"airpods max", "airpodsmax"},
    {"airpods pro", "airpodspro"},
    {"airpods", "airpods"},
    {"beats", "beats.headphones"},
    {"homepod", "homepod.fill"},
    {"apple tv", "appletv.fill"},
}};

// Models of the Mac mini whose identifiers do not say so.
constexpr std::array<std::string_view, 4> macMiniModels{"mac14,3", "mac14,12", "mac16,10",
                                                        "mac16,11"};

bool contains(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

std::string_view symbolOfModel(std::string_view model) {
  if (contains(model, "macmini") ||
      std::ranges::any_of(macMiniModels, [&](auto mini) { return model.starts_with(mini); })) {
    return "macmini.fill";
  }
  if (contains(model, "imac")) {
    return "desktopcomputer";
  }
  if (contains(model, "macbook")) {
    return "laptopcomputer";
  }
  if (contains(model, "macpro") || contains(model, "studio")) {
    return "macstudio.fill";
  }
  return "speaker.wave.2.fill";
}

}  // namespace

std::string DeviceSymbols::symbol(AudioObjectID device, std::string_view name,
                                  FourCharCode transport) {
  const std::string lowerName = lowercased(name);
  for (const NameRule& rule : nameRules) {
    if (contains(lowerName, rule.part)) {
      return std::string(rule.symbol);
    }
  }
  switch (transport) {
    case kAudioDeviceTransportTypeAirPlay:
      return contains(lowerName, "mac") ? "display" : "airplay.audio";
    case kAudioDeviceTransportTypeBluetooth:
    case kAudioDeviceTransportTypeBluetoothLE:
      return contains(lowerName, "speaker") ? "hifispeaker.fill" : "headphones";
    case kAudioDeviceTransportTypeBuiltIn: {
      const auto source = AudioObject(properties_, device)
                              .readValue<FourCharCode>(kAudioDevicePropertyDataSource,
                                                       kAudioObjectPropertyScopeOutput);
      const bool headphones =
          source == kAudioDataSourceHeadphones || contains(lowerName, "headphone");
      return headphones ? "headphones" : builtInSymbol();
    }
    case kAudioDeviceTransportTypeDisplayPort:
    case kAudioDeviceTransportTypeHDMI:
      return "display";
    default:
      return "speaker.wave.2.fill";
  }
}

const std::string& DeviceSymbols::builtInSymbol() {
  if (!builtInSymbol_) {
    builtInSymbol_ = hasInternalBattery()
                         ? "laptopcomputer"
                         : symbolOfModel(lowercased(system_.hardwareModel().value_or("")));
  }
  return *builtInSymbol_;
}

bool DeviceSymbols::hasInternalBattery() {
  if (!hasInternalBattery_) {
    hasInternalBattery_ = system_.hasInternalBattery();
  }
  return *hasInternalBattery_;
}

}  // namespace plemora
