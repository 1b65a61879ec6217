#include "skin/module_drawing.h"

#include <algorithm>

#include "skin/look/control_center_look.h"
#include "skin/module_geometry.h"

namespace plemora {

namespace {

constexpr double chevronX = 62;  // clear of the title
constexpr double chevronSize = 12;
constexpr double symbolSize = 15;
constexpr double outputGap = 13;  // from the middle of the symbol to the track
constexpr double loudnessGap = 17;
constexpr double buttonSymbolSize = 11;

/// Dark glass of the later releases has a light groove, every other glass a dark one.
Color trackColorOf(const ControlCenterLook& look, bool isDark) {
  if (isDark && look.isModern()) {
    return Color::white(look.tuning("track").value_or(look.release() == "27" ? 0.083 : 0.14));
  }
  return Color::black(isDark ? 0.35 : 0.12);
}

}  // namespace

ModuleDrawing ModuleDrawing::of(const Conditions& conditions, const ControlCenterLook& look) {
  const auto geometry =
      ModuleGeometry::of(conditions.width, conditions.isWide, conditions.isHeadphones);
  const double trackY = geometry.track.midY();
  ModuleDrawing result;
  result.track = geometry.track;
  result.foreground = conditions.isDark ? Color::white() : Color::black(0.85);
  Color faded = result.foreground;
  faded.alpha *= 0.75;
  result.titleSize = look.isModern() ? 12.4 : 13;
  result.chevron = {"chevron.right", {chevronX, titleFrame.midY()}, chevronSize, faded};
  result.output = {conditions.isHeadphones ? "headphones" : "speaker.fill",
                   {geometry.track.minX() - outputGap, trackY},
                   symbolSize,
                   result.foreground};
  if (conditions.isWide) {
    if (!conditions.isHeadphones) {
      result.loudness = {"speaker.wave.3.fill",
                         {geometry.track.maxX() + loudnessGap, trackY},
                         symbolSize,
                         result.foreground};
    }
    result.button = Rect{conditions.width - 40, 29, 26, 26};
    result.buttonSymbol = {"airplay.audio",
                           {result.button->midX(), result.button->midY()},
                           buttonSymbolSize,
                           result.foreground};
    result.buttonColor = result.foreground;
    result.buttonColor.alpha *= !conditions.isDark ? 0.08 : conditions.isHovering ? 0.26 : 0.22;
  }
  result.trackColor = trackColorOf(look, conditions.isDark);
  result.fillColor = conditions.isDark ? Color::white() : Color::black(0.7);
  result.fillOpacity = conditions.hasVolume ? 1 : 0.4;
  return result;
}

double ModuleDrawing::fillWidth(double volume) const {
  return std::max(track.width * std::clamp(volume, 0.0, 1.0), track.height);
}

double ModuleDrawing::knobOffset(double volume) const {
  return std::max(track.width * std::clamp(volume, 0.0, 1.0) - knob.width * 0.5, 0.0);
}

}  // namespace plemora
