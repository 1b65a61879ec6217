#pragma once

#include <optional>
#include <vector>

#include "adapters/stage/desktop/stage_space.h"
#include "adapters/stage/desktop/stage_window_record.h"
#include "platform/window_list.h"

namespace plemora {

/// Knows the windows of all processes of the stage. Main thread; the owners outlive it.
class StageWindowServer : public WindowList {
 public:
  explicit StageWindowServer(Screens& screens) : space_(screens) {}

  /// While true it tells nobody of any window, but keeps them on screen.
  bool isSilent = false;

  void addOwner(StageWindowOwner& owner) { owners_.push_back(&owner); }
  const std::vector<StageWindowOwner*>& owners() const { return owners_; }

  /// Front to back: by level, then by order.
  std::vector<StageWindowRecord> records();
  /// The frontmost window that takes the pointer at that point (global, y up). Windows that ignore
  /// mouse events, or that cannot be seen, let it through.
  std::optional<StageWindowRecord> hit(const Point& location);

  std::vector<WindowInfo> onScreenWindows() override;

 private:
  StageSpace space_;
  std::vector<StageWindowOwner*> owners_;
};

}  // namespace plemora
