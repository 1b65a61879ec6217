#include "adapters/linux/tray/raop_route_picker.h"

#include <algorithm>
#include <utility>

#include "base/log.h"
#include "platform/audio_constants.h"

namespace plemora {

namespace {

constexpr Logger logger("airplay");

/// Seconds that receivers on the network may take to answer.
constexpr double searchPatience = 3.0;

PopUpMenuItem note(std::string text) {
  return {std::move(text), {}, false, false, {}};
}

}  // namespace

RaopRoutePicker::RaopRoutePicker(MainQueue& mainQueue, OutputDevices& devices, Discovery discovery)
    : mainQueue_(mainQueue), devices_(devices), discovery_(std::move(discovery)) {
  subscriptions_.push_back(devices_.devices.subscribe([this](const auto&) { refresh(); }));
  subscriptions_.push_back(devices_.defaultDeviceID.subscribe([this](AudioObjectID) {
    defaultChanged();
    refresh();
  }));
}

RaopRoutePicker::~RaopRoutePicker() = default;

void RaopRoutePicker::present(const Rect& anchor, std::function<void()> didEnd) {
  if (menu_) {
    ended();
  }
  didEnd_ = std::move(didEnd);
  hasWaited_ = false;
  if (!search_) {
    search_ = discovery_ ? discovery_() : nullptr;
    if (!search_) {
      logger.warning("the sound server cannot look for AirPlay receivers");
    }
  }
  patience_ = mainQueue_.after(search_ ? searchPatience : 0, [this] {
    hasWaited_ = true;
    refresh();
  });
  menu_ = std::make_unique<PopUpMenu>(items(), [this] { ended(); });
  menu_->show(anchor);
}

std::vector<PopUpMenuItem> RaopRoutePicker::items() {
  std::vector<PopUpMenuItem> items;
  for (const OutputDevice& device : devices_.devices.get()) {
    if (device.transport == kAudioDeviceTransportTypeAirPlay) {
      items.push_back({device.name,
                       [this, device] { choose(device); },
                       true,
                       device.id == devices_.defaultDeviceID.get(),
                       {}});
    }
  }
  if (items.empty()) {
    items.push_back(
        note(hasWaited_ ? "No AirPlay receivers found" : "Looking for AirPlay receivers…"));
  }
  return items;
}

void RaopRoutePicker::refresh() {
  if (menu_) {
    menu_->setItems(items());
  }
}

void RaopRoutePicker::choose(const OutputDevice& device) {
  chosenUID_ = device.uid;
  wasDefault_ = false;
  devices_.choose(device);
  defaultChanged();
}

void RaopRoutePicker::ended() {
  menu_.reset();
  patience_.reset();
  if (chosenUID_.empty()) {
    search_.reset();
  }
  if (const auto didEnd = std::exchange(didEnd_, {})) {
    didEnd();
  }
}

void RaopRoutePicker::defaultChanged() {
  if (chosenUID_.empty()) {
    return;
  }
  const auto device = devices_.defaultDevice();
  const bool isDefault = device && device->uid == chosenUID_;
  if (wasDefault_ && !isDefault) {
    // Another output took its place: nobody needs the receiver any more.
    chosenUID_.clear();
    if (!menu_) {
      search_.reset();
    }
  }
  wasDefault_ = isDefault;
}

}  // namespace plemora
