#include "main/gallery/gallery_world.h"

namespace plemora {

namespace {

constexpr std::int32_t ownPid = 2;
constexpr std::int32_t firstPid = 100;
constexpr std::uint32_t framesPerStep = 512;
constexpr int steps = 12;
constexpr double stepSeconds = 1.0 / 30;

std::string bundleID(const std::string& name) {
  return "org.example." + name;
}

}  // namespace

GalleryWorld::GalleryWorld(const GalleryState& state) {
  consent_.setPreflight(state.isPermitted ? 0 : 1);
  if (state.hasLines) {
    defaults_.setString(PanelView::rowStyleKey, "lines");
  }
  addDevices(state);
  mixer_ = std::make_unique<MixerModel>(MixerServices{
      hal_, hal_, main_, queues_, clock_, workspace_, defaults_, consent_, system_, {}, ownPid});
  addApps(state);
  view_ = std::make_unique<PanelView>(
      *mixer_, PanelView::Services{defaults_, clock_, routes_, main_}, [] {}, [] {});
  view_->setVisible(true);
  play();
  if (!state.expanded.empty()) {
    view_->toggleExpanded(bundleID(state.expanded));
    settle();
  }
}

GalleryWorld::~GalleryWorld() {
  view_.reset();
  mixer_.reset();
  settle();
}

void GalleryWorld::addDevices(const GalleryState& state) {
  for (const GalleryDevice& device : state.devices) {
    hal_.addDevice({.uid = device.uid,
                    .name = device.name,
                    .transport = device.transport,
                    .volume = state.masterVolume,
                    .hasSettableVolume = state.masterVolume.has_value(),
                    .isMuted = state.isMasterMuted});
  }
}

void GalleryWorld::addApps(const GalleryState& state) {
  std::int32_t pid = firstPid;
  for (const GalleryApp& app : state.apps) {
    workspace_.launch({.pid = pid,
                       .bundleID = bundleID(app.name),
                       .localizedName = app.name,
                       .icon = {app.icon},
                       .activationPolicy = ActivationPolicy::regular});
    hal_.addProcess({.pid = pid,
                     .isRunningOutput = true,
                     .devices = {hal_.defaultOutput()},
                     .source = [level = app.loudness](auto, auto) { return level; }});
    ++pid;
  }
  settle();
  for (const GalleryApp& app : state.apps) {
    mixer_->setVolume(app.volume, bundleID(app.name));
    if (!app.output.empty()) {
      mixer_->setOutput(app.output, bundleID(app.name));
    }
    if (app.isMuted) {
      mixer_->toggleMute(bundleID(app.name));
    }
  }
  mixer_->publish();
  settle();
}

void GalleryWorld::play() {
  settle();
  for (int i = 0; i < steps; ++i) {
    hal_.step(framesPerStep);
    main_.advance(stepSeconds);
    settle();
  }
}

void GalleryWorld::settle() {
  while (queues_.runAll() + main_.drain() > 0) {
  }
}

}  // namespace plemora
