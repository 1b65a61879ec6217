#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "adapters/stage/desktop/stage_control_panel.h"
#include "adapters/stage/desktop/stage_fade.h"
#include "adapters/stage/desktop/stage_space.h"
#include "adapters/stage/desktop/stage_status_item.h"
#include "adapters/stage/desktop/stage_tile_grid.h"
#include "adapters/stage/desktop/stage_window_record.h"
#include "platform/clock.h"
#include "platform/main_queue.h"
#include "platform/preferences.h"

namespace plemora {

class SimulatedHal;
class StageAccessibility;
class StageMenuBar;
class StageWorkspace;

/// What Control Center stands on. All of it outlives it.
struct StageControlCenterServices {
  MainQueue& mainQueue;
  Clock& clock;
  Screens& screens;
  Preferences& preferences;
  StageWorkspace& workspace;
  StageMenuBar& menuBar;
  StageAccessibility& accessibility;
  StageWindowNumbers& numbers;
  StageExtensions& extensions;
  SimulatedHal& hal;
};

/// How Control Center falls short of what it should be. Seconds.
struct StageControlCenterFaults {
  double openDelay = 0;  ///< from the press on its icon to its panel
  double editDelay = 0;  ///< from the press on its edit button to edit mode, and back
  bool ignoresEditButton = false;
  bool staysDown = false;    ///< once ended, it is not started again
  double relaunchDelay = 1;  ///< from its end to its next start
  double tileGap = StageControlPanel::pitch - StageControlPanel::cell;  ///< points, in a row
};

/// The system's Control Center: a process that reads its layout when it starts, shows it in a panel
/// below its icon, and lets the user edit it. Killed, it is back a moment later. Main thread.
class StageControlCenter : public StageWindowOwner {
 public:
  static constexpr const char* bundleID = "com.apple.controlcenter";
  static constexpr const char* processName = "Control Center";
  static constexpr int windowLevel = 26;
  static constexpr double fadeInDuration = 0.2;  ///< seconds
  static constexpr double fadeOutDuration = 0.25;

  explicit StageControlCenter(const StageControlCenterServices& services);
  ~StageControlCenter() override;
  StageControlCenter(const StageControlCenter&) = delete;
  StageControlCenter& operator=(const StageControlCenter&) = delete;

  StageControlCenterFaults faults;

  /// Starts the process. The controls of the first layout ever read count as known; others are
  /// once edit mode was left with a tile of theirs in the grid.
  void launch();
  /// Ends it as a signal would.
  void kill();
  bool isRunning() const { return pid_ >= 0; }
  std::int32_t pid() const { return pid_; }  ///< -1: it does not run
  int launches() const { return launches_; }
  /// As a system update does it: no third party's control is shown until edit mode was left again.
  void forgetControls() { known_.clear(); }
  /// Puts its icons where its preferences want them. It does so when it starts, too.
  void followIconPreferences();

  // What the user does. Nothing happens when it cannot be done.
  void open();
  void close();
  /// As a press on its icon.
  void toggle();
  void pressEditButton();
  void pressTile(const std::string& id);
  bool removeTile(const std::string& id);
  bool moveTile(const std::string& id, int column, int row);
  bool resizeTile(const std::string& id, std::string_view size);
  /// Puts a tile for it where there is room.
  bool addGalleryEntry(std::size_t index);
  /// Of a tile with a slider; value 0...1.
  void setSlider(const std::string& id, double value);

  // What there is to be seen.
  bool isOpen() const { return phase_ == Phase::open; }
  /// Also while it fades away.
  bool isOnScreen() const { return phase_ != Phase::closed && !screens().empty(); }
  bool isEditing() const { return isEditing_; }
  double alpha() const;  ///< of its panel; 0 while there is none
  /// Where things stand in its window, if it is open or not.
  StageControlPanel panel() const;
  const StageTileGrid& grid() const { return grid_; }
  /// The tiles whose content it shows; a third party's new control is not among them.
  std::vector<StageTile> shownTiles() const;
  bool isShown(const StageTile& tile) const;
  /// Whether the tile of a module is switched on, such as that of "WiFi".
  bool isOn(const std::string& module) const { return !off_.contains(module); }
  static bool hasSlider(const StageTile& tile);
  /// Where the slider of a tile is (global, y up), also while it is closed.
  Rect slider(const StageTile& tile) const;
  /// Whether Sound shows headphones: the default output says that they are plugged in, or is named
  /// so.
  bool isOutputHeadphones() const;
  /// Of Sound: volume of the default output; of Display: brightness. 0...1.
  double sliderValue(const StageTile& tile) const;
  /// Id of the tile on its way in the user's hand, and where its top left corner is (global, y up).
  const std::optional<std::pair<std::string, Point>>& dragged() const { return dragged_; }
  /// Names of what the gallery of edit mode has to add: modules without a tile, then controls.
  std::vector<std::string> gallery() const;
  /// Why the stored layout is not the one it shows; empty: it is.
  const std::string& layoutProblem() const { return layoutProblem_; }
  /// Whether the user's last edit could be stored.
  bool couldStore() const { return couldStore_; }
  const StageSpace& space() const { return space_; }
  /// Its items in the menu bar.
  const std::vector<std::shared_ptr<StageStatusItem>>& extras() const { return extras_; }

  void appendWindows(std::vector<StageWindowRecord>& windows) override;
  void pointer(const StageWindowRecord& window, const StagePointerEvent& event) override;
  bool pressedElsewhere(const StageWindowRecord* hit) override;
  std::int64_t keyOrder() override { return isOpen() ? order_ : 0; }
  void key(const StageKeyEvent& event) override;

 private:
  enum class Phase { closed, open, closing };
  /// What the pointer holds since the button went down.
  struct Held {
    enum class Part { nothing, tile, slider };
    Part part = Part::nothing;
    std::string id;
    Point grip;  ///< from the tile's top left corner
  };

  const std::vector<Screen>& screens() const { return services_.screens.screens().get(); }
  void readLayout();
  bool edited(bool isDone);
  void show();
  void notify(const std::string& notification);
  void setEditing(bool isEditing);
  void knowControls();
  void ended();
  void highlightIcon(bool isHighlighted);
  const StageTile* tileAt(const Point& location) const;
  void pressed(const StageWindowRecord& window, const Point& location);
  void slide(const Point& location);
  void released(const Point& location);

  const StageControlCenterServices services_;
  StageSpace space_;
  std::int32_t pid_ = -1;
  int launches_ = 0;
  std::vector<std::shared_ptr<StageStatusItem>> extras_;
  StageTileGrid grid_;
  std::string layoutProblem_;
  bool couldStore_ = true;
  /// Third parties' controls whose tiles have something to show; outlives the process.
  std::set<std::pair<std::string, std::string>> known_;  // extension and kind
  std::set<std::string> off_;
  double brightness_ = 0.8;

  Phase phase_ = Phase::closed;
  bool isEditing_ = false;
  std::int64_t order_ = 0;
  std::int64_t panelNumber_ = 0;
  std::vector<std::int64_t> editNumbers_;  // of the windows of edit mode, by screen
  StageFade fade_;
  std::optional<std::pair<std::string, Point>> dragged_;
  Held held_;
  Timer opening_;
  Timer closing_;
  Timer editing_;
  Timer relaunch_;
  std::shared_ptr<StageControlCenter*> life_;  // what elements know it by; holds null at last
};

}  // namespace plemora
