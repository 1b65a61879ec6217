#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "base/geometry.h"

namespace plemora {

class PopUpWindow;

struct PopUpMenuItem {
  std::string title;  ///< empty: a separator
  std::function<void()> action;
  bool isEnabled = true;
  bool isChecked = false;
  std::string keyEquivalent;  ///< shown with the control key; empty: none
};

/// A small menu in a window of its own, drawn without the views' engine. It closes at a choice, at
/// a click elsewhere and at Escape; arrows and Enter work. Main thread; needs a QGuiApplication.
class PopUpMenu {
 public:
  /// didEnd is called once after the menu has closed and the action of the choice has run; it may
  /// destroy the menu.
  PopUpMenu(std::vector<PopUpMenuItem> items, std::function<void()> didEnd);
  /// Closes it without calling didEnd.
  ~PopUpMenu();
  PopUpMenu(const PopUpMenu&) = delete;
  PopUpMenu& operator=(const PopUpMenu&) = delete;

  /// Shows it below the anchor (global, y up) or above it where there is more room.
  void show(const Rect& anchor);
  /// Shows other items in the same place.
  void setItems(std::vector<PopUpMenuItem> items);

 private:
  /// Destroyed later: what ends the menu is often called by its window.
  struct Dismiss {
    void operator()(PopUpWindow* window) const;
  };
  std::unique_ptr<PopUpWindow, Dismiss> window_;
};

}  // namespace plemora
