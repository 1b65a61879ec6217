#pragma once

#include <optional>
#include <string>

#include "base/color.h"
#include "base/geometry.h"

namespace plemora {

class ControlCenterLook;

/// What a module shows in one state, as values: it imitates the system's own Sound module. Points
/// of the module, y down.
struct ModuleDrawing {
  struct Conditions {
    double width = 0;  ///< of the module
    bool isWide = false;
    bool isHeadphones = false;
    bool isHovering = false;
    bool hasVolume = true;
    bool isDark = true;
  };
  /// A symbol around its middle.
  struct Symbol {
    std::string name;
    Point center;
    double size = 0;
    Color color;

    bool operator==(const Symbol&) const = default;
  };

  static constexpr const char* title = "Sound";
  static constexpr Rect titleFrame{16, 11, 60, 15};
  static constexpr Size knob{20, 14};
  static constexpr Color knobColor = Color::white();

  static ModuleDrawing of(const Conditions& conditions, const ControlCenterLook& look);

  /// Across the track: how much of it is filled, and where the knob begins. volume: 0...1.
  double fillWidth(double volume) const;
  double knobOffset(double volume) const;

  Color foreground;
  double titleSize = 0;
  Symbol chevron;
  Symbol output;
  std::optional<Symbol> loudness;
  std::optional<Rect> button;  ///< a disc with a symbol
  Symbol buttonSymbol;
  Color buttonColor;

  Rect track;
  Color trackColor;
  Color fillColor;
  double fillOpacity = 1;

  bool operator==(const ModuleDrawing&) const = default;
};

}  // namespace plemora
