#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "audio/app_channel.h"
#include "devices/output_device.h"
#include "platform/user_defaults.h"
#include "platform/workspace.h"

namespace plemora {

/// Prepared rows and devices for pictures and demonstrations, configured by the text under the
/// key "demo" of the settings; no audio is touched. Read once, at creation. Main thread.
class DemoMode {
 public:
  static constexpr const char* key = "demo";

  struct App {
    std::string bundle;  ///< bundle identifier of an installed app
    float volume = 1.0f;
    bool playing = false;
    bool muted = false;
    std::optional<std::string> output;  ///< UID of a device, or of a demo device
  };
  struct Device {
    std::string name;
    std::string kind;  ///< "usb", "display", "airplay"; anything else is Bluetooth-like
  };
  struct Config {
    std::vector<App> apps;
    bool hideDevices = false;  ///< list no real device
    std::vector<Device> extraDevices;
  };
  struct AppInfo {
    std::string name;
    Image icon;
  };

  DemoMode(UserDefaults& defaults, Workspace& workspace);

  /// None when demo mode is off: there is no text, or it is no configuration (which is logged).
  const std::optional<Config>& config() const { return config_; }

  /// The configured devices as records, in order; empty when demo mode is off. Their UIDs begin
  /// with "demo-", their ids count down from the highest, out of the way of real ones.
  std::vector<OutputDevice> extraDevices() const;

  /// Name and icon of an installed app; of any other its bundle identifier and the generic icon.
  AppInfo appInfo(const std::string& bundle) const;

  /// One row for each configured app, in order; nothing is known of the devices yet. Empty when
  /// demo mode is off.
  std::vector<AppChannel> channels() const;

 private:
  Workspace& workspace_;
  std::optional<Config> config_;
};

/// Decodes the JSON of a configuration; none when it is not one.
std::optional<DemoMode::Config> parseDemoConfig(std::string_view json);

}  // namespace plemora
