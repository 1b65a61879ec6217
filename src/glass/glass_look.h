#pragma once

#include <vector>

#include "base/color.h"
#include "platform/layer.h"

namespace plemora {

/// How a background changes what lies behind it: the picture is blurred, its colours are put
/// through a matrix, then washed with plain colours, one over the other.
struct GlassLook {
  double blurRadius = 0;  ///< sigma, points
  double margin = 0;      ///< how far beyond its bounds it samples, points
  ColorMatrix matrix{};
  std::vector<Color> washes;
  /// How strongly, 0...1, a shade of the mean colour of what lies behind is laid over it: a dark
  /// one where that is bright, or in light appearance a light one where it is dark. It keeps text
  /// legible that is made for the appearance.
  double desktopTint = 0;
  bool isDark = true;

  Color translucent;  ///< instead of all this over a compositor that shows what lies behind
  Color opaque;       ///< instead of all this where nothing is known of it

  bool operator==(const GlassLook&) const = default;
};

/// The parts of a visual effect as the system makes it, before anybody tunes it.
struct Material {
  double blurRadius = 0;  ///< sigma, points
  double margin = 0;      ///< points
  double saturation = 1;
  Color fill;
  double fillOpacity = 0;
  Color tone;
  double toneOpacity = 0;
  double tintOpacity = 0;
  bool isDark = true;
  Color translucent;
  Color opaque;
};

/// For an NSVisualEffectView.Material; an unknown one looks like a menu.
Material material(int material, bool isDark);

/// The options of the system's own glass.
struct SystemGlassOptions {
  int style = 0;  ///< 1: clear
  int subduedState = 0;
  int scrimState = 0;
  Color tint = Color::white(0);

  bool operator==(const SystemGlassOptions&) const = default;
};

GlassLook systemGlassLook(const SystemGlassOptions& options, bool isDark);

}  // namespace plemora
