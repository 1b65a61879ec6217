#pragma once

#include <cstdint>
#include <memory>

#include "platform/accessibility.h"

namespace plemora {

class StageControlCenter;

/// What Control Center shows to assistive technology: its items in the menu bar, its windows, and
/// in these the tiles, with what they hold, and the edit button. An element stands for one thing of
/// one process, and answers nothing while that is not there. The pointer holds null once Control
/// Center is gone.
AccessibilityElementPointer makeControlCenterElement(
    std::shared_ptr<StageControlCenter*> controlCenter, std::int32_t pid);

}  // namespace plemora
