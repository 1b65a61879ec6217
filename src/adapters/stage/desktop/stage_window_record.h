#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "adapters/stage/desktop/stage_events.h"
#include "base/geometry.h"

namespace plemora {

class StageMenu;
class StageWindow;
class StageWindowOwner;
struct StagePlayer;
struct StageStatusItem;

/// Says who draws a window. Its model, where there is more than one of the kind, is in the record.
enum class StageWindowKind {
  menuBar,               ///< one on each screen
  statusItem,            ///< StageStatusItem
  menu,                  ///< StageMenu
  program,               ///< StageWindow
  controlCenter,         ///< the panel of StageControlCenter
  controlCenterEditing,  ///< behind the panel, one over each screen
  settings,              ///< StageSettings
  dock,                  ///< StageDock
  player,                ///< StagePlayer
  prompt,                ///< StagePrompt
};

/// A window of the stage, whoever owns it. Its pointers hold until the stage next changes.
struct StageWindowRecord {
  StageWindowKind kind = StageWindowKind::program;
  std::int64_t number = 0;  ///< never used again
  std::int64_t order = 0;   ///< among the windows of its level a larger one is further in front
  std::int32_t ownerPid = -1;
  std::string ownerName{};
  int level = 0;
  Rect frame{};  ///< global, y up
  Rect solid{};  ///< the part that takes the pointer; global, y up
  double alpha = 1;
  bool ignoresMouseEvents = false;
  StageWindowOwner* owner = nullptr;  ///< never null in a list
  std::variant<std::monostate, StageWindow*, const StageStatusItem*, StageMenu*, const StagePlayer*>
      model{};
};

/// A process of the stage as far as it has windows. Main thread.
class StageWindowOwner {
 public:
  virtual ~StageWindowOwner() = default;

  /// Adds those on screen, in any order.
  virtual void appendWindows(std::vector<StageWindowRecord>& windows) = 0;

  virtual void pointer(const StageWindowRecord& window, const StagePointerEvent& event) = 0;
  virtual void scroll(const StageWindowRecord& /*window*/, const StageScrollEvent& /*event*/) {}
  /// A button goes down over a window of another owner (null: over none). True: it ends here.
  virtual bool pressedElsewhere(const StageWindowRecord* /*hit*/) { return false; }

  /// When it last claimed the keyboard, as an order of windows; 0: it wants no keys now.
  virtual std::int64_t keyOrder() { return 0; }
  virtual void key(const StageKeyEvent& /*event*/) {}
  /// Whether the keys that it claims are the program's, and pass its local monitors.
  virtual bool isProgram() { return false; }
};

/// Numbers and orders of windows, shared by all who have some. Main thread.
class StageWindowNumbers {
 public:
  std::int64_t next() { return ++last_; }

 private:
  std::int64_t last_ = 0;
};

}  // namespace plemora
