#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "audio/mixer_model.h"
#include "base/geometry.h"
#include "base/published.h"
#include "menubar/level_meters.h"
#include "menubar/panel_row.h"
#include "platform/main_queue.h"

namespace plemora {

class Clock;
class RoutePicker;
class UserDefaults;

/// The content of the mixer panel: which rows it has and what they show, from what the mixer and
/// the output devices publish; and what happens when the user acts on them. Main thread.
class PanelView {
 public:
  /// Settings: "lines" puts an app's name above its slider; a false showMeters hides the meters.
  static constexpr const char* rowStyleKey = "appRowStyle";
  static constexpr const char* metersKey = "showMeters";

  /// Id of the master row's slider.
  static constexpr const char* masterID = "";

  /// All of it outlives the view.
  struct Services {
    UserDefaults& defaults;
    Clock& clock;
    RoutePicker& routePicker;
    MainQueue& mainQueue;
  };

  PanelView(MixerModel& model, Services services, std::function<void()> onSetUp,
            std::function<void()> onSoundSettings);
  PanelView(const PanelView&) = delete;
  PanelView& operator=(const PanelView&) = delete;

  static constexpr const char* title = "Sound";

  /// The appearance to be drawn in; whoever shows the view assigns it.
  Published<bool> isDark{true};

  /// All rows from top to bottom; assigned when any of them has changed, except as below.
  Published<PanelRows> rows;

  /// A slider that has moved, or its dimming, with no row changing otherwise: rows holds that
  /// already, but is not assigned for it.
  struct SliderState {
    std::string id;  ///< of the app; masterID
    float volume = 0;
    bool isDimmed = false;
  };
  Published<SliderState> sliderChange;

  /// What is heard of each app with a tap, by bundle identifier: 0...1 of a meter's length. Empty
  /// while the view is not visible or the meters are off; an app that is missing shows no meter.
  Published<LevelMeters::Levels> meters;

  /// While it is false nothing is measured. The list of outputs that was open is closed with it:
  /// the next opening begins at the top, with everything in sight.
  void setVisible(bool isVisible);
  bool isVisible() const { return isVisible_; }

  const std::optional<std::string>& expandedApp() const { return expandedApp_; }
  /// The height of all rows together.
  double height() const;

  /// Of the master slider: what the user has just set, else what the device says, 1 when it has no
  /// volume that can be set.
  float masterVolume() const;

  // What the user does. An id or UID that is not listed is ignored.
  void setMasterVolume(float volume);
  void toggleMasterMute();
  void setVolume(float volume, const std::string& id);
  void toggleMute(const std::string& id);
  /// Opens the app's list of outputs and closes any other, or closes it.
  void toggleExpanded(const std::string& id);
  void setOutput(const std::string& uid, const std::string& id);
  void chooseDevice(const std::string& uid);
  /// The slider (an app's, or masterID) is held: its row stays where the holder puts it until it is
  /// let go, and then shows what the model has.
  void setEditing(bool isEditing, const std::string& id);
  void setUp();
  void openSoundSettings();

  /// Shows the AirPlay receivers beside that place (global, y up).
  void presentRoutes(const Rect& anchor);
  bool isPickerOpen() const { return isPickerOpen_; }
  /// Media time at which the list of receivers last closed; none before.
  std::optional<double> lastPickerClosed() const { return lastPickerClosed_; }

 private:
  /// Seconds that a device may take to answer to a new volume; what it says meanwhile is older.
  static constexpr double answerTime = 0.3;

  void observe();
  void channelsChanged(const std::vector<AppChannel>& channels);
  void volumeChanged(const VolumeChange& change);
  void masterVolumeChanged();
  void forgetMaster();
  void showSlider(PanelRowKind kind, const std::string& id);
  void update();

  PanelRows makeRows() const;
  PanelRow masterRow() const;
  void appendApps(PanelRows& result) const;
  PanelRow appRow(const AppChannel& channel, bool isCompact) const;
  PanelRow outputsRow(const AppChannel& channel) const;
  void appendDevices(PanelRows& result) const;
  float appVolume(const AppChannel& channel) const;
  const AppChannel* find(const std::string& id) const;

  MixerModel& model_;
  OutputDevices& outputs_;
  const Services services_;
  const std::function<void()> onSetUp_;
  const std::function<void()> onSoundSettings_;
  std::vector<AppChannel> channels_;  // as published, with the volumes set since
  std::optional<std::string> expandedApp_;
  std::map<std::string, float> held_;  // apps' sliders in the user's hand, and where they are
  bool isMasterHeld_ = false;
  std::optional<float> masterShown_;  // as set by the user, while held or not yet answered
  Timer masterAnswer_;
  bool isVisible_ = false;
  bool isPickerOpen_ = false;
  std::optional<double> lastPickerClosed_;
  LevelMeters levelMeters_;
  std::vector<Subscription> subscriptions_;
  std::shared_ptr<int> life_ = std::make_shared<int>(0);  // expires for a picker still open
};

}  // namespace plemora
