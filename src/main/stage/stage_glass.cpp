#include "main/stage/stage_glass.h"

#include "glass/color_matrix.h"

namespace plemora {

namespace {

struct Recipe {
  double blur;
  double saturation;
  Color wash;
  double desktopTint;
};

Recipe darkRecipe(GlassKind kind) {
  switch (kind) {
    case GlassKind::bar:
      return {18, 1.4, Color::black(0.22), 0.2};
    case GlassKind::dock:
      return {16, 1.5, Color::gray(0.35, 0.22), 0};
    case GlassKind::menu:
      return {26, 1.6, Color::gray(0.10, 0.62), 0.2};
    case GlassKind::tile:
      break;
    case GlassKind::tileOn:
      return {14, 1.5, Color::gray(0.96, 0.88), 0};
    case GlassKind::editing:
      return {22, 1.3, Color::gray(0.05, 0.5), 0.1};
  }
  return {};
}

Recipe lightRecipe(GlassKind kind) {
  switch (kind) {
    case GlassKind::bar:
      return {18, 1.4, Color::white(0.34), 0.2};
    case GlassKind::dock:
      return {16, 1.5, Color::white(0.3), 0};
    case GlassKind::menu:
      return {26, 1.7, Color::gray(0.97, 0.68), 0.2};
    case GlassKind::tile:
      break;
    case GlassKind::tileOn:
      return {14, 1.5, Color::white(0.94), 0};
    case GlassKind::editing:
      return {22, 1.3, Color::white(0.42), 0.1};
  }
  return {};
}

/// Of the modules in Control Center: little blur, less contrast, more colour, the same in both
/// appearances.
struct ClearGlass {
  double blur;
  ColorMatrix matrix;
};

const ClearGlass& clearGlass(GlassRelease release) {
  static constexpr ClearGlass glass26_1{
      2, {1.02F,  -0.33F, -0.08F, 0, 0.18F, -0.17F, 0.81F, -0.05F, 0, 0.17F,
          -0.11F, -0.4F,  1.14F,  0, 0.16F, 0,      0,     0,      1, 0}};
  static constexpr ClearGlass glass26_4{
      2.8, {1.13F,  -0.43F, -0.05F, 0, 0.12F, -0.13F, 0.83F, -0.05F, 0, 0.12F,
            -0.13F, -0.44F, 1.21F,  0, 0.12F, 0,      0,     0,      1, 0}};
  static constexpr ClearGlass glass27{
      2.8, {1.09F,  -0.37F, -0.04F, 0, 0.12F, -0.11F, 0.83F, -0.03F, 0, 0.12F,
            -0.11F, -0.36F, 1.16F,  0, 0.12F, 0,      0,     0,      1, 0}};
  switch (release) {
    case GlassRelease::macOS26_1:
      return glass26_1;
    case GlassRelease::macOS26_4:
      return glass26_4;
    case GlassRelease::macOS27:
      break;
  }
  return glass27;
}

}  // namespace

GlassRelease glassReleaseOf(const SystemVersion& version) {
  if (version >= SystemVersion{27, 0, 0}) {
    return GlassRelease::macOS27;
  }
  return version >= SystemVersion{26, 4, 0} ? GlassRelease::macOS26_4 : GlassRelease::macOS26_1;
}

GlassLook stageGlassLook(GlassKind kind, bool isDark, GlassRelease release) {
  const Recipe recipe = isDark ? darkRecipe(kind) : lightRecipe(kind);
  GlassLook look;
  look.blurRadius = recipe.blur;
  look.matrix = saturationMatrix(recipe.saturation);
  look.washes = {recipe.wash};
  look.desktopTint = recipe.desktopTint;
  if (kind == GlassKind::tile) {
    const ClearGlass& glass = clearGlass(release);
    look.blurRadius = glass.blur;
    look.matrix = glass.matrix;
    look.washes.clear();
    look.desktopTint = 0;
  }
  look.margin = 3 * look.blurRadius;
  look.isDark = isDark;
  look.opaque = isDark ? Color::gray(0.15) : Color::gray(0.93);
  look.translucent = look.opaque;
  return look;
}

ColorMatrix stageBackdropResponse(bool isDark, GlassRelease release) {
  switch (release) {
    case GlassRelease::macOS26_1:
      return isDark ? ColorMatrix{0.95F, 0.01F, 0,      0, 0,      0, 0.954F, 0, 0, 0.003F,
                                  0,     0.01F, 0.946F, 0, 0.006F, 0, 0,      0, 1, 0}
                    : ColorMatrix{0.944F, 0.01F, 0,      0, 0, 0, 0.948F, 0, 0, 0.002F,
                                  0.004F, 0.01F, 0.941F, 0, 0, 0, 0,      0, 1, 0};
    case GlassRelease::macOS26_4:
      return {0.953F, 0.005F, 0,     0, 0.004F, 0, 0.959F, 0, 0, 0.008F,
              0,      0.008F, 0.95F, 0, 0.017F, 0, 0,      0, 1, 0};
    case GlassRelease::macOS27:
      return {0.955F, -0.007F, 0,      0, 0.01F,  0, 0.954F, 0, 0, 0.014F,
              0,      -0.005F, 0.953F, 0, 0.023F, 0, 0,      0, 1, 0};
  }
  return identityMatrix;
}

GlassRim stageGlassRim(GlassKind kind) {
  return kind == GlassKind::bar || kind == GlassKind::editing ? GlassRim{} : GlassRim{0.58, 0.2};
}

}  // namespace plemora
