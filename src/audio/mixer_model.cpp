#include "audio/mixer_model.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <iterator>
#include <utility>

#include "audio/default_symbol.h"
#include "base/text.h"

namespace plemora {

MixerModel::MixerModel(MixerServices services)
    : services_(std::move(services)),
      demo_(services_.defaults, services_.workspace),
      outputs_(services_.properties, services_.system,
               [this] {
                 return DemoDevices{.extra = demo_.extraDevices(),
                                    .hideReal = demo_.config() && demo_.config()->hideDevices};
               }),
      audioPermission_(services_.consent, services_.mainQueue),
      store_(services_.defaults),
      levels_(store_.load()),
      taps_(services_,
            [this](const std::string& id, bool again) {
              if (again) {
                syncTap(id);
              }
              if (taps_.hasTap(id)) {
                tapLevels_.tapStarted();
              }
              publish();
            }),
      tapLevels_(services_.mainQueue, [this] { return taps_.takeLevels(); }) {
  permission.set(audioPermission_.status());
  if (demo_.config()) {
    demoChannels_ = demo_.channels();
    publish();
  } else {
    scanner_.emplace(services_.properties, services_.mainQueue, services_.workspace,
                     services_.processID);
    scanner_->onChange = [this](const std::vector<AudioApp>& apps) { update(apps); };
    scanner_->scan();
  }
  observeOutputs();
  if (std::ranges::find(services_.arguments, "--log-levels") != services_.arguments.end()) {
    tapLevels_.startLog();
  }
}

MixerModel::~MixerModel() = default;

void MixerModel::observeOutputs() {
  cancellables_.push_back(outputs_.defaultDeviceID.subscribeToChanges(
      std::identity{}, [this](AudioObjectID) { rebuildAllTaps(); }));
  const auto uids = [](const std::vector<OutputDevice>& devices) {
    std::vector<std::string> result;
    std::ranges::transform(devices, std::back_inserter(result), &OutputDevice::uid);
    return result;
  };
  cancellables_.push_back(
      outputs_.devices.subscribeToChanges(uids, [this](const std::vector<std::string>&) {
        for (const auto& [id, app] : apps_) {
          syncTap(id);
        }
        publish();
      }));
}

void MixerModel::setVolume(float volume, const std::string& id) {
  if (std::isnan(volume)) {
    return;
  }
  volume = std::clamp(volume, 0.0f, 1.0f);
  if (demoChannels_) {
    changeDemo(id, [&](AppChannel& row) {
      row.volume = volume;
      row.isMuted = false;
    });
    return;
  }
  Level& level = levels_[id];
  level.volume = volume;
  if (volume > 0) {
    level.muted = false;
  }
  save();
  const bool hadTap = taps_.hasTap(id);
  syncTap(id);
  volumeChange.set({id, level.volume, level.muted});
  // The slider shows its position already; but a row that was kept by its tap alone must go.
  if (hadTap && !taps_.hasTap(id)) {
    publish();
  }
}

void MixerModel::toggleMute(const std::string& id) {
  if (demoChannels_) {
    changeDemo(id, [](AppChannel& row) { row.isMuted = !row.isMuted; });
    return;
  }
  Level& level = levels_[id];
  level.muted = !level.muted;
  save();
  syncTap(id);
  publish();
}

void MixerModel::setOutput(const std::optional<std::string>& uid, const std::string& id) {
  if (demoChannels_) {
    changeDemo(id, [&](AppChannel& row) { row.outputUID = uid; });
    return;
  }
  const auto app = apps_.find(id);
  const bool isOwnDevice = app != apps_.end() && uid && route(app->second).sourceUID == *uid;
  levels_[id].output = isOwnDevice ? std::nullopt : uid;
  save();
  syncTap(id);
  publish();
}

void MixerModel::refreshPermission() {
  const auto status = audioPermission_.status();
  if (status != permission.get()) {
    permission.set(status);
  }
}

void MixerModel::save() {
  store_.save(levels_);
}

void MixerModel::update(const std::vector<AudioApp>& apps) {
  const WallTime now = services_.clock.now();
  // This is called for changes alone: what played at the last one has played until now.
  for (const auto& [id, app] : apps_) {
    if (app.isPlaying) {
      lastHeard_[id] = now;
    }
  }
  apps_.clear();
  for (const AudioApp& app : apps) {
    if (app.isPlaying) {
      lastHeard_[app.id] = now;
    }
    apps_[app.id] = app;
    if (!icons_.contains(app.id)) {
      icons_[app.id] = app.icon(services_.workspace);
    }
  }
  for (const AudioApp& app : apps) {
    syncTap(app.id);
  }
  for (const std::string& id : taps_.ids()) {
    if (!apps_.contains(id)) {
      syncTap(id);
    }
  }
  publish();
}

void MixerModel::publish() {
  if (demoChannels_) {
    publishDemo();
    return;
  }
  const WallTime now = services_.clock.now();
  std::vector<AppChannel> rows;
  for (const auto& [id, app] : apps_) {
    if (isListed(app, now)) {
      rows.push_back(channel(app));
    }
  }
  std::ranges::stable_sort(rows, localizedCaseInsensitiveLess, &AppChannel::name);
  if (rows != channels.get()) {
    channels.set(std::move(rows));
  }
}

bool MixerModel::isListed(const AudioApp& app, WallTime now) const {
  // A tap that is being built counts, so that a row does not go and come while one is replaced.
  if (app.isPlaying || taps_.hasTap(app.id) || taps_.isBuilding(app.id)) {
    return true;
  }
  const auto heard = lastHeard_.find(app.id);
  return heard != lastHeard_.end() &&
         std::chrono::duration<double>(now - heard->second).count() < lingerInterval;
}

AppChannel MixerModel::channel(const AudioApp& app) const {
  const Level level = this->level(app.id);
  const Route route = this->route(app);
  const OutputDevice* heardOn = outputWithUID(route.targetUID);
  return {.id = app.id,
          .name = app.name,
          .icon = icons_.at(app.id),
          .isPlaying = app.isPlaying,
          .volume = level.volume,
          .isMuted = level.muted,
          .outputUID = level.output,
          .outputSymbol = heardOn ? heardOn->symbol : std::string(defaultSymbol),
          .isRouted = route.isRouted()};
}

void MixerModel::changeDemo(const std::string& id, const std::function<void(AppChannel&)>& change) {
  const auto row = std::ranges::find(*demoChannels_, id, &AppChannel::id);
  if (row != demoChannels_->end()) {
    change(*row);
    publish();
  }
}

void MixerModel::publishDemo() {
  const auto defaultDevice = outputs_.defaultDevice();
  for (AppChannel& row : *demoChannels_) {
    const OutputDevice* chosen = row.outputUID ? outputWithUID(*row.outputUID) : nullptr;
    row.outputSymbol = chosen ? chosen->symbol : std::string(defaultSymbol);
    row.isRouted = chosen && !(defaultDevice && defaultDevice->uid == chosen->uid);
  }
  if (*demoChannels_ != channels.get()) {
    channels.set(*demoChannels_);
  }
}

}  // namespace plemora
