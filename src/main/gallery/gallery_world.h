#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "adapters/stage/manual_serial_queue.h"
#include "adapters/stage/memory_defaults.h"
#include "adapters/stage/scripted_appearance.h"
#include "adapters/stage/scripted_consent.h"
#include "adapters/stage/scripted_system_info.h"
#include "adapters/stage/scripted_workspace.h"
#include "adapters/stage/simulated_hal.h"
#include "adapters/stage/virtual_clock.h"
#include "adapters/stage/virtual_main_queue.h"
#include "audio/mixer_model.h"
#include "menubar/panel_view.h"
#include "platform/route_picker.h"
#include "skin/look/control_center_look.h"

namespace plemora {

/// One app of a picture.
struct GalleryApp {
  std::string name;
  std::string icon;  ///< path of a picture; empty: none
  float volume = 1;
  bool isMuted = false;
  std::string output;    ///< UID of the device chosen for it; empty: none
  float loudness = 0.5;  ///< amplitude of what it plays
};

struct GalleryDevice {
  std::string uid;
  std::string name;
  FourCharCode transport = kAudioDeviceTransportTypeBuiltIn;
};

/// What a picture shows.
struct GalleryState {
  std::string name;  ///< of its file
  std::vector<GalleryApp> apps;
  std::vector<GalleryDevice> devices;
  std::optional<float> masterVolume = 0.62f;  ///< none: the device has no settable one
  bool isMasterMuted = false;
  bool isPermitted = true;
  bool hasLines = false;
  std::string expanded;  ///< name of the app whose outputs are open
  double room = 0;       ///< height that the screen has for the panel; 0: enough
};

/// A desktop in memory on which the panel runs, with the apps and devices of a picture.
class GalleryWorld {
 public:
  explicit GalleryWorld(const GalleryState& state);
  ~GalleryWorld();

  PanelView& view() { return *view_; }
  ControlCenterLook& look() { return look_; }
  MainQueue& mainQueue() { return main_; }
  /// Lets what waits in the queues run.
  void settle();

 private:
  struct NoRoutes : RoutePicker {
    void present(const Rect&, std::function<void()> didEnd) override { didEnd(); }
  };

  void addDevices(const GalleryState& state);
  void addApps(const GalleryState& state);
  /// Lets sound flow for a while, so that the meters stand somewhere.
  void play();

  VirtualClock clock_;
  VirtualMainQueue main_{clock_};
  StageQueueFactory queues_;
  SimulatedHal hal_{main_};
  ScriptedWorkspace workspace_;
  MemoryDefaults defaults_;
  ScriptedConsent consent_;
  ScriptedSystemInfo system_;
  ScriptedAppearance appearance_;
  NoRoutes routes_;
  ControlCenterLook look_{defaults_, system_, appearance_};
  std::unique_ptr<MixerModel> mixer_;
  std::unique_ptr<PanelView> view_;
};

}  // namespace plemora
