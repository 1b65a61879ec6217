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
      return {14, 1.5, Color::gray(0.09, 0.46), 0.12};
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
      return {14, 1.6, Color::white(0.5), 0.12};
    case GlassKind::tileOn:
      return {14, 1.5, Color::white(0.94), 0};
    case GlassKind::editing:
      return {22, 1.3, Color::white(0.42), 0.1};
  }
  return {};
}

}  // namespace

GlassLook stageGlassLook(GlassKind kind, bool isDark) {
  const Recipe recipe = isDark ? darkRecipe(kind) : lightRecipe(kind);
  GlassLook look;
  look.blurRadius = recipe.blur;
  look.margin = 3 * recipe.blur;
  look.matrix = saturationMatrix(recipe.saturation);
  look.washes = {recipe.wash};
  look.desktopTint = recipe.desktopTint;
  look.isDark = isDark;
  look.opaque = isDark ? Color::gray(0.15) : Color::gray(0.93);
  look.translucent = look.opaque;
  return look;
}

GlassRim stageGlassRim(GlassKind kind, bool isDark) {
  if (kind == GlassKind::bar || kind == GlassKind::editing) {
    return {Color::white(0), Color::white(0)};
  }
  return isDark ? GlassRim{Color::white(0.34), Color::white(0.10)}
                : GlassRim{Color::white(0.85), Color::white(0.35)};
}

}  // namespace plemora
