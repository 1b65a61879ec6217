#include "main/gallery/gallery_states.h"

#include <QString>
#include <utility>

#include "main/gallery/wallpaper.h"
#include "platform/audio_constants.h"

namespace plemora {

namespace {

constexpr int iconSide = 128;

std::vector<GalleryDevice> usualDevices() {
  return {{"speakers", "Built-in Speakers", kAudioDeviceTransportTypeBuiltIn},
          {"headset", "AirPods Pro", kAudioDeviceTransportTypeBluetooth},
          {"desk", "Desk Interface", kAudioDeviceTransportTypeUSB},
          {"screen", "Studio Display", kAudioDeviceTransportTypeDisplayPort}};
}

/// Draws the icons of pictures.
class Icons {
 public:
  explicit Icons(std::string folder) : folder_(std::move(folder)) {}

  std::string make(const std::string& symbol, double hue) const {
    const std::string path = folder_ + "/" + symbol + std::to_string(hue) + ".png";
    tileIcon(QString::fromStdString(symbol), hue, iconSide).save(QString::fromStdString(path));
    return path;
  }

 private:
  std::string folder_;
};

std::vector<GalleryApp> usualApps(const Icons& icons) {
  return {{"Browser", icons.make("desktopcomputer", 0.58), 0.85f, false, "", 0.3f},
          {"Music", icons.make("music.note", 0.95), 0.7f, false, "desk", 0.7f},
          {"Podcasts", icons.make("headphones", 0.78), 0.5f, true, "", 0.4f},
          {"Video", icons.make("tv", 0.08), 0.35f, false, "", 0.2f}};
}

std::vector<GalleryApp> manyApps(const Icons& icons) {
  std::vector<GalleryApp> apps = usualApps(icons);
  for (const char* name : {"Calls", "Chess", "Editor", "Game", "Mail", "Meetings", "Notes", "Radio",
                           "Recorder", "Terminal", "Weather"}) {
    const auto step = static_cast<float>(apps.size()) / 15;
    apps.push_back({name, "", 1 - step * 0.8f, false, "", step});
  }
  return apps;
}

std::vector<GalleryApp> longNames(const Icons& icons) {
  return {{"A Music Player With an Exceedingly Long Name", icons.make("music.note", 0.35), 0.6f},
          {"مشغل الموسيقى", "", 0.8f},
          {"נגן מוזיקה", "", 0.45f},
          {"Ångström Überspieler", "", 0.9f}};
}

}  // namespace

std::vector<GalleryState> galleryStates(const std::string& iconFolder) {
  const Icons icons(iconFolder);
  const GalleryState usual{.name = "panel", .apps = usualApps(icons), .devices = usualDevices()};
  std::vector<GalleryState> states{usual};
  const auto add = [&](const char* name, const auto& change) {
    states.push_back(usual);
    states.back().name = name;
    change(states.back());
  };
  add("no-apps", [](GalleryState& state) { state.apps.clear(); });
  add("many-apps", [&](GalleryState& state) {
    state.apps = manyApps(icons);
    state.room = 560;
  });
  add("open-outputs", [](GalleryState& state) { state.expanded = "Music"; });
  add("permission", [](GalleryState& state) { state.isPermitted = false; });
  add("muted", [](GalleryState& state) {
    state.isMasterMuted = true;
    for (GalleryApp& app : state.apps) {
      app.isMuted = true;
    }
  });
  add("long-names", [&](GalleryState& state) {
    state.apps = longNames(icons);
    state.devices[2].name = "A Sound Card That Spells Out Its Maker, Model and Serial Number";
  });
  add("no-volume", [](GalleryState& state) { state.masterVolume.reset(); });
  add("lines", [](GalleryState& state) { state.hasLines = true; });
  return states;
}

}  // namespace plemora
