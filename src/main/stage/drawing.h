#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "base/color.h"
#include "base/geometry.h"

namespace plemora {

// What the stage draws of its world, as values: two equal drawings give equal pictures, so a
// drawing that equals the one before need not be painted again. Rectangles in points, y down from
// the top left corner of the main screen.

/// A rounded rectangle in one colour, or in two from top to bottom. A radius above half the shorter
/// side is cut down to it.
struct FillMark {
  Rect rect;
  double radius = 0;
  Color color;
  std::optional<Color> bottom;

  bool operator==(const FillMark&) const = default;
};

/// A line inside the edge of a rounded rectangle.
struct StrokeMark {
  Rect rect;
  double radius = 0;
  Color color;
  double width = 1;

  bool operator==(const StrokeMark&) const = default;
};

/// A soft shadow of a rounded rectangle, around it and not below it.
struct ShadowMark {
  Rect rect;
  double radius = 0;
  double blur = 12;  ///< how far it reaches
  double drop = 4;   ///< how far it lies below
  double strength = 0.3;

  bool operator==(const ShadowMark&) const = default;
};

/// The sheets of glass that the desktop is made of.
enum class GlassKind { bar, dock, menu, tile, tileOn, editing };

/// Releases of the system whose glass differs.
enum class GlassRelease { macOS26_1, macOS26_4, macOS27 };

/// Shows what is below it, blurred and tinted, with a bright rim.
struct GlassMark {
  Rect rect;
  double radius = 0;
  GlassKind kind = GlassKind::tile;
  bool isDark = true;
  GlassRelease release = GlassRelease::macOS26_4;

  bool operator==(const GlassMark&) const = default;
};

enum class TextPlace { left, center, right };

/// One line, in the middle of the height; what does not fit is cut with an ellipsis.
struct TextMark {
  Rect rect;
  std::string text;
  Color color;
  double size = 13;
  int weight = 400;
  TextPlace place = TextPlace::left;

  bool operator==(const TextMark&) const = default;
};

/// A named symbol, fitted into the rectangle.
struct SymbolMark {
  Rect rect;
  std::string name;
  Color color;
  std::optional<double> value;  ///< 0...1, of symbols with waves

  bool operator==(const SymbolMark&) const = default;
};

/// The icon of an app: a tile in a colour of its own with its symbol, or its first letter.
struct AppIconMark {
  Rect rect;
  std::string name;
  std::string symbol;

  bool operator==(const AppIconMark&) const = default;
};

/// The arrow of the pointer; its tip is the corner of the rectangle.
struct PointerMark {
  Rect rect;

  bool operator==(const PointerMark&) const = default;
};

using Mark = std::variant<FillMark, StrokeMark, ShadowMark, GlassMark, TextMark, SymbolMark,
                          AppIconMark, PointerMark>;

/// Marks from the bottom up.
using Drawing = std::vector<Mark>;

/// The smallest rectangle that holds every mark, shadows included.
Rect boundsOf(const Drawing& drawing);

}  // namespace plemora
