#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/geometry.h"

namespace plemora {

/// A named system symbol as a template image.
struct SymbolImage {
  std::string name;
  std::optional<double> variableValue;  ///< 0...1
  double pointSize = 14;
  std::string accessibilityDescription;

  bool operator==(const SymbolImage&) const = default;
};

struct MenuItem {
  std::string title;  ///< empty: a separator
  std::function<void()> action;
  std::string keyEquivalent;  ///< with the command key; empty: none
};

enum class StatusButtonEvent {
  leftMouseDown,
  rightMouseDown,
  middleMouseDown,  ///< only on platforms whose users expect it
};

/// NSSquareStatusItemLength.
inline constexpr double squareStatusItemLength = -2;

/// The program's item in the menu bar or tray. Main thread.
class StatusItem {
 public:
  virtual ~StatusItem() = default;

  virtual void setImage(const SymbolImage& image) = 0;
  virtual void setHighlighted(bool isHighlighted) = 0;
  /// The button's rectangle, global, y up; none while it has no window. May be an estimate.
  virtual std::optional<Rect> frame() = 0;
  /// Pops the menu up at the item and keeps it until it is closed; the next left click is reported
  /// to the handler as ever.
  virtual void popUpMenu(std::vector<MenuItem> items) = 0;
};

/// What the item tells its owner. steps: notches of the wheel over the item, positive is up.
struct StatusItemHandlers {
  std::function<void(StatusButtonEvent)> clicked;
  std::function<void(int steps)> scrolled;
  /// Items for hosts that show a menu without asking first; called each time that it is shown. The
  /// first one does what a left click does: hosts whose left click does that leave it out.
  std::function<std::vector<MenuItem>()> menu;
};

struct StatusItemOptions {
  double length = squareStatusItemLength;
  unsigned behavior = 0;
  unsigned actionMask = 0;  ///< InputEvent masks that make the button act
  std::string accessibilityLabel;
};

class StatusBar {
 public:
  virtual ~StatusBar() = default;

  /// Never null; where there is no tray yet, the item appears with it.
  [[nodiscard]] virtual std::unique_ptr<StatusItem> makeItem(const StatusItemOptions& options,
                                                             StatusItemHandlers handlers) = 0;
};

}  // namespace plemora
