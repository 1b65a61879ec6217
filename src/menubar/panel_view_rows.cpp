#include <algorithm>
#include <numeric>
#include <utility>

#include "audio/audio_permission.h"
#include "menubar/panel_view.h"
#include "platform/user_defaults.h"

// Which rows the panel has, and what they say.

namespace plemora {

namespace {

// Heights in points.
constexpr double titleHeight = 34;
constexpr double masterHeight = 34;
constexpr double dividerHeight = 13;
constexpr double headerHeight = 24;
constexpr double emptyHeight = 34;
constexpr double compactAppHeight = 38;
constexpr double linesAppHeight = 48;
constexpr double deviceHeight = 34;
constexpr double entryHeight = 32;   // of a device in an app's list
constexpr double listPadding = 4;    // below such a list
constexpr double detailHeight = 44;  // of a row with a line of detail
constexpr double settingsHeight = 32;
constexpr double bottomPadding = 6;

// Of the icon of a muted app.
constexpr double mutedOpacity = 0.5;
constexpr double mutedSaturation = 0.3;

PanelRow textRow(PanelRowKind kind, double height, const std::string& title) {
  PanelRow row;
  row.kind = kind;
  row.id = title;
  row.height = height;
  row.title = title;
  return row;
}

PanelRow chevronRow(PanelRowKind kind, const std::string& title, const std::string& detail) {
  PanelRow row = textRow(kind, detailHeight, title);
  row.detail = detail;
  row.symbol = "chevron.right";
  return row;
}

}  // namespace

double PanelView::height() const {
  const auto add = [](double sum, const PanelRow& row) { return sum + row.height; };
  return std::accumulate(rows.get().begin(), rows.get().end(), bottomPadding, add);
}

PanelRows PanelView::makeRows() const {
  PanelRows result;
  result.push_back(textRow(PanelRowKind::title, titleHeight, title));
  result.push_back(masterRow());
  result.push_back(textRow(PanelRowKind::divider, dividerHeight, ""));
  result.push_back(textRow(PanelRowKind::header, headerHeight, "Apps"));
  appendApps(result);
  result.push_back(textRow(PanelRowKind::header, headerHeight, "Output"));
  appendDevices(result);
  result.push_back(chevronRow(PanelRowKind::airPlay, "AirPlay", "AirPlay speakers and TVs"));
  result.push_back(textRow(PanelRowKind::settings, settingsHeight, "Sound Settings…"));
  return result;
}

PanelRow PanelView::masterRow() const {
  const auto device = outputs_.defaultDevice();
  const bool isWorn = device && device->isHeadphones();
  PanelRow row = textRow(PanelRowKind::master, masterHeight, masterID);
  row.symbol = isWorn ? "headphones" : "speaker.fill";
  row.symbolSize = isWorn ? 14 : 15;
  row.volume = masterVolume();
  row.isEnabled = outputs_.volume.get().has_value();
  row.isMuted = outputs_.isMuted.get();
  row.isDimmed = row.isMuted;
  row.sliderLabel = ControlSlider::label;
  row.slider = masterSliderShape;
  return row;
}

void PanelView::appendApps(PanelRows& result) const {
  if (model_.permission.get() != AudioPermission::Status::granted) {
    result.push_back(chevronRow(PanelRowKind::permission, "Turn on app volumes",
                                "Allow audio access to control each app"));
    return;
  }
  if (channels_.empty()) {
    result.push_back(textRow(PanelRowKind::empty, emptyHeight, "No apps are playing sound"));
    return;
  }
  const bool isCompact = services_.defaults.string(rowStyleKey) != "lines";
  for (const AppChannel& channel : channels_) {
    result.push_back(appRow(channel, isCompact));
    if (expandedApp_ == channel.id) {
      result.push_back(outputsRow(channel));
    }
  }
}

PanelRow PanelView::appRow(const AppChannel& channel, bool isCompact) const {
  PanelRow row =
      textRow(PanelRowKind::app, isCompact ? compactAppHeight : linesAppHeight, channel.name);
  row.id = channel.id;
  row.symbol = channel.outputSymbol;
  row.isOpen = expandedApp_ == channel.id;
  row.volume = appVolume(channel);
  row.isMuted = channel.isMuted;
  row.isDimmed = channel.isMuted;
  row.sliderLabel = channel.name + " volume";
  row.slider = appSliderShape;
  row.isCompact = isCompact;
  row.icon = channel.icon;
  row.iconOpacity = channel.isMuted ? mutedOpacity : 1;
  row.iconSaturation = channel.isMuted ? mutedSaturation : 1;
  row.muteHelp = (channel.isMuted ? "Unmute " : "Mute ") + channel.name;
  row.outputHelp = "Output for " + channel.name;
  return row;
}

PanelRow PanelView::outputsRow(const AppChannel& channel) const {
  const auto& devices = outputs_.devices.get();
  // A chosen device that is gone leaves the app on the default one.
  const bool hasOwn = channel.outputUID && std::ranges::find(devices, *channel.outputUID,
                                                             &OutputDevice::uid) != devices.end();
  PanelRow row = textRow(PanelRowKind::outputs, listPadding, "Output for " + channel.name);
  row.id = channel.id;
  for (const OutputDevice& device : devices) {
    const bool isSelected =
        hasOwn ? device.uid == *channel.outputUID : device.id == outputs_.defaultDeviceID.get();
    row.devices.push_back({device.uid, device.name, device.symbol, isSelected, entryHeight});
    row.height += entryHeight;
  }
  return row;
}

void PanelView::appendDevices(PanelRows& result) const {
  for (const OutputDevice& device : outputs_.devices.get()) {
    PanelRow row = textRow(PanelRowKind::device, deviceHeight, device.name);
    row.id = device.uid;
    row.symbol = device.symbol;
    row.isSelected = device.id == outputs_.defaultDeviceID.get();
    result.push_back(std::move(row));
  }
}

float PanelView::appVolume(const AppChannel& channel) const {
  const auto held = held_.find(channel.id);
  return held == held_.end() ? channel.volume : held->second;
}

}  // namespace plemora
