#pragma once

#include <optional>
#include <string>
#include <vector>

namespace plemora {

/// One row of the property Channels, as a client of the bus sees it.
struct AppState {
  std::string id;
  std::string name;
  std::string icon;  ///< path, or name in the icon theme; may be empty
  bool playing = false;
  double volume = 1;  ///< 0...1, the position of the slider
  bool muted = false;
  std::string output;  ///< UID of the chosen device; empty = follows the default
  std::string outputSymbol;
  bool routed = false;  ///< sent to another device than the one it plays to

  bool operator==(const AppState&) const = default;
};

/// One row of the property Devices.
struct DeviceState {
  std::string uid;
  std::string name;
  std::string symbol;
  std::string transport;  ///< "builtin", "usb", "bluetooth", "hdmi", ...
  bool isDefault = false;

  bool operator==(const DeviceState&) const = default;
};

/// All properties of the interface at one moment.
struct MixerState {
  std::vector<AppState> apps;
  std::vector<DeviceState> devices;
  std::string defaultDevice;     ///< UID; empty when there is none
  std::optional<double> volume;  ///< of the default device, 0...1; none: it has no settable volume
  bool muted = false;            ///< the default device
  std::string permission;        ///< "granted", "denied" or "unknown"
  bool connected = false;        ///< to the sound server
  bool demo = false;             ///< prepared rows are shown and no sound is touched
  std::string version;

  bool operator==(const MixerState&) const = default;
};

/// What one app's tap measured since the level report before.
struct LevelReport {
  std::string id;
  double gain = 0;        ///< linear
  double inputPeak = 0;   ///< largest absolute sample before the gain
  double outputPeak = 0;  ///< and after it

  bool operator==(const LevelReport&) const = default;
};

/// One thing that an app's sound passes on its way to the ear, and by how much it scales it.
struct FactorReport {
  std::string name;  ///< "playing", "app mute", "app level", "route", "device mute", ...
  double value = 1;  ///< 0: this alone makes the app silent; 1: no influence
  std::string text;  ///< in words

  bool operator==(const FactorReport&) const = default;
};

/// Why an app is heard, or not.
struct AudibilityReport {
  std::vector<FactorReport> factors;
  double product = 1;   ///< of all values; 0: silent
  std::string verdict;  ///< one sentence

  bool operator==(const AudibilityReport&) const = default;
};

}  // namespace plemora
