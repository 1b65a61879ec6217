#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "base/geometry.h"

namespace plemora {

class AccessibilityElement;
using AccessibilityElementPointer = std::shared_ptr<AccessibilityElement>;

/// The value of an attribute. Points and sizes are in points of the screens, y down from the top
/// left corner of the main one.
using AccessibilityValue =
    std::variant<bool, double, std::string, Point, Size, AccessibilityElementPointer,
                 std::vector<AccessibilityElementPointer>>;

/// One element of another application's interface (AXUIElement on a Mac): a reference, which may
/// outlive what it stands for. Any thread but the real-time ones; a call may take as long as the
/// other application pleases.
class AccessibilityElement {
 public:
  virtual ~AccessibilityElement() = default;

  /// Such as "AXRole", "AXChildren"; none when it has no such attribute or cannot be asked.
  virtual std::optional<AccessibilityValue> attribute(const std::string& name) = 0;
  /// Such as "AXPress". False when it could not be performed.
  virtual bool perform(const std::string& action) = 0;
};

/// Dropping it ends the observation, also from inside its handler.
class AccessibilityObserver {
 public:
  virtual ~AccessibilityObserver() = default;
};

/// The interfaces of other applications. Any thread but the real-time ones.
class Accessibility {
 public:
  virtual ~Accessibility() = default;

  /// Whether the user lets this program use them. Without it every attribute reads as none.
  virtual bool isTrusted() = 0;
  /// As isTrusted(); without trust the system asks the user for it, in its own time and in a window
  /// of its own (AXIsProcessTrustedWithOptions with kAXTrustedCheckOptionPrompt). Main thread.
  virtual bool requestTrust() = 0;
  /// The element of a running application; never null, also for a process that is gone.
  virtual AccessibilityElementPointer application(std::int32_t pid) = 0;
  /// Reports those notifications of an application, such as "AXWindowCreated", on the main thread.
  /// Null when it cannot be observed. Main thread.
  [[nodiscard]] virtual std::unique_ptr<AccessibilityObserver> observe(
      std::int32_t pid, const std::vector<std::string>& notifications,
      std::function<void()> handler) = 0;
};

}  // namespace plemora
