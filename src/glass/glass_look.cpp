#include "glass/glass_look.h"

#include "glass/color_matrix.h"

namespace plemora {

namespace {

/// What tells the materials apart: how solid they are, and how light.
struct MaterialRow {
  int material;
  double fillOpacity;
  double darkLevel;   ///< white level of the fill in dark appearance
  double lightLevel;  ///< and in light appearance
};

constexpr int menu = 5;
constexpr MaterialRow materials[] = {
    {menu, 0.62, 0.13, 0.96},  // first: what an unknown one looks like
    {3, 0.80, 0.16, 0.93},     // titlebar
    {6, 0.60, 0.14, 0.96},     // popover
    {7, 0.66, 0.13, 0.94},     // sidebar
    {10, 0.80, 0.15, 0.97},    // headerView
    {11, 0.72, 0.15, 0.95},    // sheet
    {12, 0.90, 0.14, 0.93},    // windowBackground
    {13, 0.52, 0.10, 0.95},    // hudWindow
    {15, 0.45, 0.09, 0.92},    // fullScreenUI
    {17, 0.70, 0.15, 0.96},    // toolTip
    {18, 0.92, 0.12, 1.00},    // contentBackground
    {21, 0.86, 0.10, 0.88},    // underWindowBackground
};

const MaterialRow& rowOf(int number) {
  for (const MaterialRow& row : materials) {
    if (row.material == number) {
      return row;
    }
  }
  return materials[0];
}

/// A grey with a breath of blue, as the shadows of a window have.
Color cool(double level, double alpha) {
  return {level, level, level * 0.94 + 0.06 * (level > 0.5 ? 1 : 0.35), alpha};
}

constexpr double translucentAlpha = 0.78;

}  // namespace

Material material(int number, bool isDark) {
  const MaterialRow& row = rowOf(number);
  const double level = isDark ? row.darkLevel : row.lightLevel;
  return {.blurRadius = 30,
          .margin = 60,
          .saturation = 1.8,
          .fill = cool(level, 1),
          .fillOpacity = row.fillOpacity,
          .tone = Color::gray(isDark ? 0 : 1),
          .toneOpacity = isDark ? 0.08 : 0.10,
          .tintOpacity = 0.5,
          .isDark = isDark,
          .translucent = cool(level + (isDark ? 0.02 : 0), translucentAlpha),
          .opaque = cool(level + (isDark ? 0.05 : -0.01), 1)};
}

GlassLook systemGlassLook(const SystemGlassOptions& options, bool isDark) {
  const bool isClear = options.style == 1;
  const double level = isDark ? 0.12 : 0.97;
  GlassLook look{.blurRadius = isClear ? 4.0 : 12.0,
                 .margin = 36,
                 .matrix = saturationMatrix(isClear ? 1.2 : 1.6),
                 .washes = {cool(level, isClear ? 0.16 : 0.46)},
                 .desktopTint = 0.35,
                 .isDark = isDark,
                 .translucent = cool(level, isClear ? 0.6 : translucentAlpha),
                 .opaque = cool(level + (isDark ? 0.04 : -0.02), 1)};
  if (options.subduedState != 0) {
    look.washes.push_back(Color::gray(0.5, 0.18));
  }
  if (options.scrimState != 0) {
    look.washes.push_back(Color::gray(isDark ? 0 : 1, 0.25));
  }
  if (options.tint.alpha > 0) {
    // A tint colours the glass; an opaque one does not turn it into paint.
    Color tint = options.tint;
    tint.alpha *= 0.6;
    look.washes.push_back(tint);
  }
  return look;
}

}  // namespace plemora
