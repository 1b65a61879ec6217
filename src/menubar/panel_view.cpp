#include "menubar/panel_view.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <utility>

#include "platform/clock.h"
#include "platform/route_picker.h"
#include "platform/user_defaults.h"

namespace plemora {

PanelView::PanelView(MixerModel& model, Services services, std::function<void()> onSetUp,
                     std::function<void()> onSoundSettings)
    : model_(model),
      outputs_(model.outputs()),
      services_(services),
      onSetUp_(std::move(onSetUp)),
      onSoundSettings_(std::move(onSoundSettings)),
      channels_(model.channels.get()),
      levelMeters_(model.tapLevels(),
                   [this](const LevelMeters::Levels& levels) { meters.set(levels); }) {
  observe();
  update();
}

void PanelView::observe() {
  const auto updates = [this](const auto&) { update(); };
  subscriptions_.push_back(
      model_.channels.subscribe([this](const auto& channels) { channelsChanged(channels); }));
  subscriptions_.push_back(
      model_.volumeChange.subscribe([this](const VolumeChange& change) { volumeChanged(change); }));
  subscriptions_.push_back(model_.permission.subscribe(updates));
  subscriptions_.push_back(outputs_.devices.subscribe(updates));
  subscriptions_.push_back(
      outputs_.defaultDeviceID.subscribeToChanges(std::identity{}, [this](AudioObjectID) {
        forgetMaster();
        update();
      }));
  subscriptions_.push_back(
      outputs_.volume.subscribe([this](const auto&) { masterVolumeChanged(); }));
  subscriptions_.push_back(outputs_.isMuted.subscribeToChanges(std::identity{}, updates));
}

void PanelView::channelsChanged(const std::vector<AppChannel>& channels) {
  channels_ = channels;
  if (expandedApp_ && find(*expandedApp_) == nullptr) {
    expandedApp_.reset();
  }
  // Who held the slider of an app that has gone does not let go of it any more.
  std::erase_if(held_, [this](const auto& held) { return find(held.first) == nullptr; });
  update();
}

void PanelView::volumeChanged(const VolumeChange& change) {
  const auto channel = std::ranges::find(channels_, change.id, &AppChannel::id);
  if (channel == channels_.end()) {
    return;
  }
  channel->volume = change.volume;
  if (std::exchange(channel->isMuted, change.isMuted) != change.isMuted) {
    update();
  } else {
    showSlider(PanelRowKind::app, change.id);
  }
}

void PanelView::masterVolumeChanged() {
  if (!outputs_.volume.get()) {
    forgetMaster();
  }
  // Whether it can be set at all is the row's business, where it stands the slider's.
  if (rows.get().at(1).isEnabled != outputs_.volume.get().has_value()) {
    update();
  } else {
    showSlider(PanelRowKind::master, masterID);
  }
}

void PanelView::forgetMaster() {
  isMasterHeld_ = false;
  masterShown_.reset();
  masterAnswer_.reset();
}

float PanelView::masterVolume() const {
  const float volume = masterShown_ ? *masterShown_ : outputs_.volume.get().value_or(1.0f);
  // A driver may say anything; what is no number would count as another volume at every look.
  return volume > 0 ? std::min(volume, 1.0f) : 0.0f;
}

void PanelView::showSlider(PanelRowKind kind, const std::string& id) {
  const bool isMaster = kind == PanelRowKind::master;
  const AppChannel* channel = isMaster ? nullptr : find(id);
  if (!isMaster && channel == nullptr) {
    return;
  }
  const SliderState state{isMaster ? masterID : id, isMaster ? masterVolume() : appVolume(*channel),
                          isMaster ? outputs_.isMuted.get() : channel->isMuted};
  bool isOther = false;
  rows.changeSilently([&](PanelRows& all) {
    const auto row = std::ranges::find_if(all, [&](const PanelRow& candidate) {
      return candidate.kind == kind && (isMaster || candidate.id == id);
    });
    if (row != all.end()) {
      isOther = row->volume != state.volume || row->isDimmed != state.isDimmed;
      row->volume = state.volume;
      row->isDimmed = state.isDimmed;
    }
  });
  if (isOther) {
    sliderChange.set(state);
  }
}

void PanelView::update() {
  PanelRows next = makeRows();
  if (next != rows.get()) {
    rows.set(std::move(next));
  }
}

void PanelView::setVisible(bool isVisible) {
  if (isVisible == isVisible_) {
    return;
  }
  isVisible_ = isVisible;
  if (isVisible) {
    if (services_.defaults.boolean(metersKey).value_or(true)) {
      levelMeters_.start();
    }
    return;
  }
  levelMeters_.stop();
  if (!meters.get().empty()) {
    meters.set({});
  }
  expandedApp_.reset();
  held_.clear();
  forgetMaster();
  update();
}

void PanelView::setMasterVolume(float volume) {
  if (std::isnan(volume) || !outputs_.volume.get()) {
    return;
  }
  masterShown_ = std::clamp(volume, 0.0f, 1.0f);
  masterAnswer_ = services_.mainQueue.after(answerTime, [this] {
    masterAnswer_.reset();
    if (!isMasterHeld_) {
      masterShown_.reset();
      showSlider(PanelRowKind::master, masterID);
    }
  });
  outputs_.setVolume(*masterShown_);
  showSlider(PanelRowKind::master, masterID);
}

void PanelView::toggleMasterMute() {
  if (outputs_.defaultDeviceID.get() != 0) {
    outputs_.setMuted(!outputs_.isMuted.get());
  }
}

void PanelView::setVolume(float volume, const std::string& id) {
  if (std::isnan(volume) || find(id) == nullptr) {
    return;
  }
  if (const auto held = held_.find(id); held != held_.end()) {
    held->second = std::clamp(volume, 0.0f, 1.0f);
  }
  model_.setVolume(volume, id);
}

void PanelView::toggleMute(const std::string& id) {
  if (find(id) != nullptr) {
    model_.toggleMute(id);
  }
}

void PanelView::toggleExpanded(const std::string& id) {
  if (expandedApp_ == id) {
    expandedApp_.reset();
  } else if (find(id) != nullptr) {
    expandedApp_ = id;
  } else {
    return;
  }
  update();
}

void PanelView::setOutput(const std::string& uid, const std::string& id) {
  const auto& devices = outputs_.devices.get();
  if (find(id) != nullptr && std::ranges::find(devices, uid, &OutputDevice::uid) != devices.end()) {
    model_.setOutput(uid, id);
  }
}

void PanelView::chooseDevice(const std::string& uid) {
  const auto& devices = outputs_.devices.get();
  const auto device = std::ranges::find(devices, uid, &OutputDevice::uid);
  if (device != devices.end()) {
    // A copy: choosing publishes a new list.
    outputs_.choose(OutputDevice(*device));
  }
}

void PanelView::setEditing(bool isEditing, const std::string& id) {
  if (id == masterID) {
    isMasterHeld_ = isEditing;
    if (isEditing) {
      masterShown_ = masterVolume();
    } else if (!masterAnswer_) {
      masterShown_.reset();
    }
    showSlider(PanelRowKind::master, masterID);
    return;
  }
  const AppChannel* channel = find(id);
  if (isEditing && channel != nullptr) {
    held_.emplace(id, channel->volume);
  } else {
    held_.erase(id);
  }
  showSlider(PanelRowKind::app, id);
}

void PanelView::setUp() {
  if (onSetUp_) {
    onSetUp_();
  }
}

void PanelView::openSoundSettings() {
  if (onSoundSettings_) {
    onSoundSettings_();
  }
}

void PanelView::presentRoutes(const Rect& anchor) {
  isPickerOpen_ = true;
  services_.routePicker.present(anchor, [this, life = std::weak_ptr(life_)] {
    if (!life.expired()) {
      isPickerOpen_ = false;
      lastPickerClosed_ = services_.clock.mediaTime();
    }
  });
}

const AppChannel* PanelView::find(const std::string& id) const {
  const auto channel = std::ranges::find(channels_, id, &AppChannel::id);
  return channel == channels_.end() ? nullptr : &*channel;
}

}  // namespace plemora
