#include "audio/demo_mode.h"

#include <algorithm>
#include <limits>
#include <nlohmann/json.hpp>
#include <utility>

#include "audio/default_symbol.h"
#include "base/log.h"
#include "base/text.h"
#include "platform/audio_constants.h"

namespace plemora {

namespace {

using Json = nlohmann::json;

constexpr Logger logger("demo");

// Members are read by at(): what is absent or of another type throws, which the one caller turns
// into "no configuration".

// Truth values do not pass for numbers, as they would in a plain conversion.
float parseVolume(const Json& json) {
  return json.is_number() ? static_cast<float>(std::clamp(json.get<double>(), 0.0, 1.0))
                          : throw Json::type_error::create(302, "volume is no number", &json);
}

DemoMode::App parseApp(const Json& json) {
  DemoMode::App app{.bundle = json.at("bundle").get_ref<const std::string&>(),
                    .volume = parseVolume(json.at("volume")),
                    .playing = json.at("playing").get_ref<const bool&>(),
                    .muted = json.at("muted").get_ref<const bool&>(),
                    .output = std::nullopt};
  if (const auto output = json.find("output"); output != json.end() && !output->is_null()) {
    app.output = output->get_ref<const std::string&>();
  }
  return app;
}

DemoMode::Config parseConfig(const Json& json) {
  DemoMode::Config config;
  for (const Json& app : json.at("apps").get_ref<const Json::array_t&>()) {
    config.apps.push_back(parseApp(app));
  }
  if (const auto hide = json.find("hideDevices"); hide != json.end() && !hide->is_null()) {
    config.hideDevices = hide->get_ref<const bool&>();
  }
  if (const auto extra = json.find("extraDevices"); extra != json.end() && !extra->is_null()) {
    for (const Json& device : extra->get_ref<const Json::array_t&>()) {
      config.extraDevices.push_back({device.at("name").get_ref<const std::string&>(),
                                     device.at("kind").get_ref<const std::string&>()});
    }
  }
  return config;
}

std::string bluetoothSymbol(const std::string& lowerName) {
  static constexpr std::pair<std::string_view, std::string_view> rules[] = {
      {"airpods max", "airpodsmax"},
      {"airpods pro", "airpodspro"},
      {"airpods", "airpods"},
      {"speaker", "hifispeaker.fill"},
  };
  for (const auto& [part, symbol] : rules) {
    if (lowerName.find(part) != std::string::npos) {
      return std::string(symbol);
    }
  }
  return "headphones";
}

OutputDevice deviceRecord(const DemoMode::Device& device, std::size_t index) {
  OutputDevice record{
      .id = std::numeric_limits<AudioObjectID>::max() - static_cast<AudioObjectID>(index),
      .uid = std::string(demoDeviceUIDPrefix) + std::to_string(index + 1),
      .name = device.name,
      .symbol = {},
      .transport = kAudioDeviceTransportTypeBluetooth};
  const std::string name = lowercased(device.name);
  if (device.kind == "usb") {
    record.transport = kAudioDeviceTransportTypeUSB;
    record.symbol = defaultSymbol;
  } else if (device.kind == "display") {
    record.transport = kAudioDeviceTransportTypeDisplayPort;
    record.symbol = "display";
  } else if (device.kind == "airplay") {
    record.transport = kAudioDeviceTransportTypeAirPlay;
    record.symbol = name.find("homepod") != std::string::npos ? "homepod.fill" : "airplay.audio";
  } else {
    record.symbol = bluetoothSymbol(name);
  }
  return record;
}

}  // namespace

std::optional<DemoMode::Config> parseDemoConfig(std::string_view json) {
  try {
    return parseConfig(Json::parse(json));
  } catch (const Json::exception&) {
    return std::nullopt;
  }
}

DemoMode::DemoMode(UserDefaults& defaults, Workspace& workspace) : workspace_(workspace) {
  const auto text = defaults.string(key);
  if (!text) {
    return;
  }
  config_ = parseDemoConfig(*text);
  if (!config_) {
    logger.warning(
        "the setting \"demo\" is no configuration of the demo mode, which stays off: it has to be "
        "JSON with \"apps\", each with \"bundle\", \"volume\", \"playing\" and \"muted\"");
  }
}

std::vector<OutputDevice> DemoMode::extraDevices() const {
  std::vector<OutputDevice> devices;
  if (config_) {
    for (const Device& device : config_->extraDevices) {
      devices.push_back(deviceRecord(device, devices.size()));
    }
  }
  return devices;
}

DemoMode::AppInfo DemoMode::appInfo(const std::string& bundle) const {
  const auto application = workspace_.installedApplication(bundle);
  if (!application) {
    return {bundle, workspace_.genericApplicationIcon()};
  }
  return {application->name.empty() ? bundle : application->name, application->icon};
}

std::vector<AppChannel> DemoMode::channels() const {
  std::vector<AppChannel> channels;
  if (config_) {
    for (const App& app : config_->apps) {
      AppInfo info = appInfo(app.bundle);
      channels.push_back({.id = app.bundle,
                          .name = std::move(info.name),
                          .icon = std::move(info.icon),
                          .isPlaying = app.playing,
                          .volume = app.volume,
                          .isMuted = app.muted,
                          .outputUID = app.output,
                          .outputSymbol = std::string(defaultSymbol),
                          .isRouted = false});
    }
  }
  return channels;
}

}  // namespace plemora
