#pragma once

#include <cstdint>
#include <vector>

#include "adapters/stage/desktop/stage_window_record.h"
#include "platform/screens.h"
#include "platform/workspace.h"

namespace plemora {

class StageProgram;
class StageWorkspace;

/// The Dock at the bottom of the main screen: an icon for every regular application. Main thread;
/// what it is given outlives it.
class StageDock : public StageWindowOwner {
 public:
  static constexpr const char* bundleID = "com.apple.dock";
  static constexpr int windowLevel = 20;
  static constexpr double height = 62;
  static constexpr double iconSize = 48;
  static constexpr double margin = 4;  ///< from the bottom of the screen
  static constexpr double padding = 7;

  StageDock(Screens& screens, StageWorkspace& workspace, StageProgram& program,
            StageWindowNumbers& numbers);

  /// The applications it shows, from left to right.
  std::vector<RunningApplication> icons() const;
  Rect frame() const;                       ///< global, y up; empty without a screen
  Rect iconFrame(std::size_t index) const;  ///< global, y up

  void appendWindows(std::vector<StageWindowRecord>& windows) override;
  void pointer(const StageWindowRecord& window, const StagePointerEvent& event) override;

 private:
  Screens& screens_;
  StageWorkspace& workspace_;
  StageProgram& program_;
  std::int32_t pid_;
  std::int64_t number_;
};

}  // namespace plemora
