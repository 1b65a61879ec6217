#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "adapters/stage/desktop/stage_space.h"
#include "adapters/stage/desktop/stage_window_record.h"

namespace plemora {

class Preferences;
class ScriptedConsent;
class SimulatedHal;
class StageAccessibility;
class StageProgram;
class StageWorkspace;

/// What System Settings stands on. All of it outlives it.
struct StageSettingsServices {
  Screens& screens;
  Preferences& preferences;
  StageWorkspace& workspace;
  StageWindowNumbers& numbers;
  StageAccessibility& accessibility;
  ScriptedConsent& consent;
  SimulatedHal& hal;
  StageProgram& program;
};

/// System Settings: one window, opened at a pane by a link. It ends when its window is closed. Main
/// thread.
class StageSettings : public StageWindowOwner {
 public:
  static constexpr const char* bundleID = "com.apple.systempreferences";
  static constexpr const char* processName = "System Settings";
  static constexpr double titleBarHeight = 52;
  static constexpr double sidebarWidth = 215;
  static constexpr double rowHeight = 44;

  enum class Pane { general, audioCapture, accessibility, menuBar, sound };

  /// A line of the pane with a switch (or, of Sound, a choice).
  struct Row {
    std::string title;
    bool isOn = false;
  };

  explicit StageSettings(const StageSettingsServices& services);

  /// False for what is no link to a setting. An unknown pane opens the general one.
  bool openURL(const std::string& url);
  void show(Pane pane);
  void close();
  void move(const Point& origin);  ///< of its window, global, y up

  bool isOpen() const { return pid_ >= 0; }
  std::int32_t pid() const { return pid_; }
  Pane pane() const { return pane_; }
  std::string title() const;
  std::vector<Row> rows() const;
  /// The user sets it. False when the pane has no such row.
  bool setRow(const std::string& title, bool isOn);

  const Rect& frame() const { return frame_; }  ///< global, y up
  Rect closeButton() const;                     ///< global, y up
  Rect rowFrame(std::size_t index) const;       ///< global, y up

  void appendWindows(std::vector<StageWindowRecord>& windows) override;
  void pointer(const StageWindowRecord& window, const StagePointerEvent& event) override;
  std::int64_t keyOrder() override { return 0; }

 private:
  void bringForward();

  const StageSettingsServices services_;
  std::int32_t pid_ = -1;
  Pane pane_ = Pane::general;
  Rect frame_{0, 0, 715, 520};
  std::int64_t number_ = 0;
  std::int64_t order_ = 0;
  std::optional<Point> grip_;  // of the title bar, from the window's origin
};

}  // namespace plemora
