#pragma once

#include <string>
#include <string_view>

#include "main/stage/drawing.h"

namespace plemora {

/// Colours of the desktop in one appearance.
struct Palette {
  bool isDark = true;
  Color text;
  Color secondary;
  Color faint;  ///< fills of fields and of what is off
  Color line;
  Color window;
  Color sidebar;
  Color accent{0.04, 0.52, 1, 1};

  static const Palette& of(bool isDark);
};

/// Adds the shadow, the sheet and the edge of an ordinary window.
void addWindow(Drawing& drawing, const Rect& frame, const Palette& palette);
/// The three buttons of a window that is in use, whose first one is there.
void addWindowButtons(Drawing& drawing, const Rect& closeButton);
void addSwitch(Drawing& drawing, const Rect& place, bool isOn, const Palette& palette);
/// A track with its knob. value: 0...1.
void addSlider(Drawing& drawing, const Rect& place, double value, const Palette& palette);
void addButton(Drawing& drawing, const Rect& place, std::string title, bool isDefault,
               const Palette& palette);

Rect centered(const Rect& in, double width, double height);

/// The symbol on the icon of an app of that name; empty: none, its first letter stands for it.
std::string symbolOfApp(std::string_view name);

}  // namespace plemora
