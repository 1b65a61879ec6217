#pragma once

#include <string>
#include <vector>

#include "base/image.h"
#include "menubar/control_slider.h"

namespace plemora {

/// One device in an app's list of outputs.
struct DeviceEntry {
  std::string uid;
  std::string name;
  std::string symbol;
  bool isSelected = false;
  double height = 0;

  bool operator==(const DeviceEntry&) const = default;
};

enum class PanelRowKind {
  title,
  master,
  divider,
  header,
  permission,
  empty,
  app,
  outputs,  ///< AppOutputList: devices
  device,
  airPlay,
  settings,
};

/// What one row of the panel shows. Which fields count depends on the kind. Heights in points; the
/// panel is as high as its rows together.
struct PanelRow {
  PanelRowKind kind = PanelRowKind::title;
  /// Unique among the rows of its kind: the app's bundle identifier (app, outputs), the device's
  /// UID (device), else the title.
  std::string id;
  double height = 0;
  std::string title;
  std::string detail;
  /// Leading glyph (master, device), glyph of the output button (app), trailing one (permission,
  /// airPlay).
  std::string symbol;
  double symbolSize = 15;
  bool isSelected = false;  ///< device
  bool isOpen = false;      ///< app: its list of outputs follows

  // master and app
  float volume = 0;  ///< 0...1, the slider's
  bool isEnabled = true;
  bool isDimmed = false;
  std::string sliderLabel;
  SliderShape slider;

  // app; isMuted also of master
  bool isMuted = false;
  bool isCompact = true;
  Image icon;
  double iconOpacity = 1;
  double iconSaturation = 1;
  std::string muteHelp;
  std::string outputHelp;

  std::vector<DeviceEntry> devices;  ///< outputs

  bool operator==(const PanelRow&) const = default;
};

using PanelRows = std::vector<PanelRow>;

}  // namespace plemora
