#pragma once

#include "base/published.h"

namespace plemora {

/// What the docked helper has to say. Main thread.
struct HelperState {
  enum class Kind { audioPermission, accessibility, controlCenter, hideSoundIcon };
  /// Where the helper stands, seen from System Settings.
  enum class Placement { under, left, right };

  Published<Kind> kind{Kind::audioPermission};
  Published<Placement> placement{Placement::under};
  Published<bool> isDragging{false};        ///< the program's icon is on its way to the list
  Published<bool> awaitingApproval{false};  ///< it was dropped there, or the system was told to ask
  Published<bool> succeeded{false};
  Published<bool> settingsMissing{false};  ///< System Settings has not come
  Published<bool> controlCenterEditing{false};
  Published<bool> controlCenterOpen{false};
  /// Control Center was left, and the change is not there yet.
  Published<bool> controlCenterRetry{false};
};

}  // namespace plemora
