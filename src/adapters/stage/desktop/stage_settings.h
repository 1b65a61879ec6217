#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "adapters/stage/desktop/stage_window_record.h"
#include "base/geometry.h"

namespace plemora {

class Preferences;
class ScriptedConsent;
class Screens;
class SimulatedHal;
class StageAccessibility;
class StageControlCenter;
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
  StageControlCenter& controlCenter;
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

  /// A line of the pane with a switch; in Sound, an output that can be chosen.
  struct Row {
    std::string title;
    bool isOn = false;
  };

  explicit StageSettings(const StageSettingsServices& services) : services_(services) {}

  /// Opens the pane that the link names, or the general one. False for what is no such link.
  bool openURL(const std::string& url);
  void show(Pane pane);
  void close();
  void move(const Point& origin);  ///< of its window, global, y up

  bool isOpen() const { return pid_ >= 0; }
  std::int32_t pid() const { return pid_; }  ///< -1: it does not run
  Pane pane() const { return pane_; }
  std::string title() const;  ///< of the pane
  std::vector<Row> rows() const;
  /// The user sets it. False when the pane has no such row.
  bool setRow(const std::string& title, bool isOn);
  /// The user drops a program onto its window. False when the pane keeps no list of programs.
  bool drop(const std::string& path);

  const Rect& frame() const { return frame_; }  ///< global, y up
  Rect closeButton() const;                     ///< global, y up
  Rect rowFrame(std::size_t index) const;       ///< global, y up

  void appendWindows(std::vector<StageWindowRecord>& windows) override;
  void pointer(const StageWindowRecord& window, const StagePointerEvent& event) override;
  /// It takes the keys away from others, though it does nothing with them.
  std::int64_t keyOrder() override { return isOpen() ? order_ : 0; }

 private:
  void bringForward();
  void ended();
  void pressed(const Point& location);

  const StageSettingsServices services_;
  std::int32_t pid_ = -1;
  Pane pane_ = Pane::general;
  Rect frame_{0, 0, 715, 520};
  bool wasPlaced_ = false;
  std::int64_t number_ = 0;
  std::int64_t order_ = 0;
  std::optional<Point> grip_;  // of the title bar, from the window's origin
};

}  // namespace plemora
