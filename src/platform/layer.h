#pragma once

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "base/color.h"
#include "base/geometry.h"

namespace plemora {

/// A 4x5 colour matrix in row order (R, G, B, A row; four multipliers and an offset each), applied
/// to colours 0...1 that are not premultiplied. Layout: Core Animation's CAColorMatrix.
using ColorMatrix = std::array<float, 20>;

/// How a layer's pixels are combined with what lies below it.
enum class BlendMode {
  normal,
  screen,      ///< 1 - (1 - a)(1 - b)
  saturation,  ///< hue and luminosity from below, saturation from the layer (W3C compositing)
  plusLighter,
};

/// One part of a shape's outline.
struct RoundedRect {
  Rect rect;
  double radius = 0;
  bool isContinuous = false;  ///< the corners ease in and out of their curve

  bool operator==(const RoundedRect&) const = default;
};

/// Colours along a line, between points in the unit square of the layer.
struct GradientContent {
  std::vector<Color> colors;
  std::vector<double> locations;  ///< 0...1, rising, as many as colours; empty: spread evenly
  Point start{0.5, 0};
  Point end{0.5, 1};

  bool operator==(const GradientContent&) const = default;
};

/// Outlines, filled and stroked.
struct ShapeContent {
  std::vector<RoundedRect> path;
  bool isEvenOdd = false;       ///< the fill rule; otherwise non-zero
  std::optional<Color> fill;    ///< none: not filled
  std::optional<Color> stroke;  ///< none: not stroked
  double lineWidth = 1;         ///< points, centred on the outline

  bool operator==(const ShapeContent&) const = default;
};

/// Straight-alpha RGBA pixels, 8 bits each, rows from the top, no padding; stretched over the
/// layer's bounds.
struct ImageContent {
  int width = 0;   ///< pixels
  int height = 0;  ///< pixels
  std::shared_ptr<const std::vector<unsigned char>> pixels;

  bool operator==(const ImageContent&) const = default;
};

using LayerContent = std::variant<std::monostate, GradientContent, ShapeContent, ImageContent>;

/// One node of a tree of drawn layers that this program makes: a record that whoever shows it
/// (the glass renderer, or Core Animation) reads. Coordinates are points with y down from the top
/// left corner of the parent. Main thread.
struct Layer {
  std::string name;
  Rect frame;
  double opacity = 1;
  bool isHidden = false;
  std::optional<Color> backgroundColor;
  double cornerRadius = 0;
  bool hasContinuousCorners = false;
  bool masksToBounds = false;
  double zPosition = 0;  ///< siblings are drawn by it, then in their order
  BlendMode blendMode = BlendMode::normal;
  double featherRadius = 0;  ///< sigma in points of a blur over the layer's own alpha; 0: sharp
  LayerContent content;
  std::shared_ptr<Layer> mask;  ///< its alpha multiplies the layer's; frame in the layer's space
  std::vector<std::shared_ptr<Layer>> sublayers;
};

}  // namespace plemora
