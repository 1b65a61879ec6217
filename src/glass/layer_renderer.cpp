#include "glass/layer_renderer.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include "glass/blend.h"
#include "glass/coverage.h"
#include "glass/gaussian_blur.h"
#include "glass/layer_paint.h"
#include "glass/outline.h"
#include "glass/pixel_kernel.h"

namespace plemora {

namespace {

constexpr std::size_t deepest = 64;
constexpr double largestScale = 16;
constexpr PixelRect everywhere = {-100'000'000, -100'000'000, 200'000'000, 200'000'000};

std::uint8_t levelOf(double opacity) {
  return static_cast<std::uint8_t>(alphaOf(pixelFor(Color::black(opacity))));
}

Rect united(const Rect& a, const Rect& b) {
  if (a.isEmpty() || b.isEmpty()) {
    return a.isEmpty() ? b : a;
  }
  const double left = std::min(a.minX(), b.minX());
  const double top = std::min(a.minY(), b.minY());
  return {left, top, std::max(a.maxX(), b.maxX()) - left, std::max(a.maxY(), b.maxY()) - top};
}

bool hasContent(const Layer& layer) {
  return !std::holds_alternative<std::monostate>(layer.content);
}

/// One tree being drawn. Origins are the zero point of a layer's parent, in points of the raster
/// that is drawn on.
class Drawing {
 public:
  explicit Drawing(double scale) : scale_(scale) {}

  void draw(const Layer& layer, Raster& target, Point origin) {
    const std::uint8_t opacity = levelOf(layer.opacity);
    if (layer.isHidden || opacity == 0 || !enter(layer)) {
      return;
    }
    const Rect frame = finiteOr0(layer.frame);
    const Rect place = frame.offset(origin.x, origin.y);
    if (drawThroughShape(layer, target, place, opacity)) {
      // Nothing is left to do.
    } else if (needsGroup(layer, opacity)) {
      drawGroup(layer, target, place, opacity);
    } else {
      drawContents(layer, target, place, opacity);
    }
    ancestors_.pop_back();
  }

 private:
  bool enter(const Layer& layer) {
    if (ancestors_.size() >= deepest ||
        std::find(ancestors_.begin(), ancestors_.end(), &layer) != ancestors_.end()) {
      return false;
    }
    ancestors_.push_back(&layer);
    return true;
  }

  /// Whether the layer has to be drawn apart first.
  static bool needsGroup(const Layer& layer, std::uint8_t opacity) {
    const auto* shape = std::get_if<ShapeContent>(&layer.content);
    const int pieces = (layer.backgroundColor ? 1 : 0) + (hasContent(layer) ? 1 : 0) +
                       (shape && shape->fill && shape->stroke ? 1 : 0) +
                       (layer.sublayers.empty() ? 0 : 2);
    return layer.mask || layer.featherRadius > 0 || layer.blendMode != BlendMode::normal ||
           (layer.masksToBounds && (hasContent(layer) || !layer.sublayers.empty())) ||
           (opacity < 255 && pieces > 1);
  }

  /// A gradient masked by a line or a filled shape, as a rim is, needs no group, which would cost
  /// as much as all that it surrounds. Whether the layer was such a one and has been drawn.
  bool drawThroughShape(const Layer& layer, Raster& target, const Rect& place,
                        std::uint8_t opacity) const {
    const Layer* mask = layer.mask.get();
    const auto* shape = mask ? std::get_if<ShapeContent>(&mask->content) : nullptr;
    if (!shape || !std::holds_alternative<GradientContent>(layer.content) ||
        layer.backgroundColor || !layer.sublayers.empty() || layer.featherRadius > 0 ||
        layer.blendMode != BlendMode::normal || (layer.masksToBounds && layer.cornerRadius > 0)) {
      return false;
    }
    const Rect maskPlace = finiteOr0(mask->frame).offset(place.x, place.y);
    const PixelRect drawn = extentOf(*mask, maskPlace);
    if (mask->isHidden || mask->opacity != 1 || mask->backgroundColor || mask->mask ||
        !mask->sublayers.empty() || mask->featherRadius > 0 || mask->masksToBounds ||
        shape->fill.has_value() == shape->stroke.has_value() ||
        drawn.intersection(pixelsOf(place)) != drawn) {
      return false;
    }
    const Color& color = shape->fill ? *shape->fill : *shape->stroke;
    if (const auto source = paintOf(layer, place)) {
      paint(target,
            shape->fill ? fillOf(*shape, maskPlace.origin(), target)
                        : strokeOf(*shape, maskPlace.origin(), target),
            *source, static_cast<std::uint8_t>(multiply255(opacity, levelOf(color.alpha))));
    }
    return true;
  }

  void drawGroup(const Layer& layer, Raster& target, const Rect& place, std::uint8_t opacity) {
    const GaussianBlur feather(layer.featherRadius * scale_);
    PixelRect part = extentOf(layer, place).intersection(target.bounds().inset(-feather.reach()));
    if (layer.mask) {
      const Rect masked = finiteOr0(layer.mask->frame).offset(place.x, place.y);
      part = part.intersection(extentOf(*layer.mask, masked).inset(-feather.reach()));
    }
    if (part.isEmpty()) {
      return;
    }
    Raster group(part.width, part.height);
    const Rect inGroup = place.offset(-part.x / scale_, -part.y / scale_);
    drawContents(layer, group, inGroup, 255);
    if (layer.masksToBounds) {
      clipTo(group, outlineOf(layer, inGroup, group));
    }
    if (layer.mask) {
      Raster mask(part.width, part.height);
      draw(*layer.mask, mask, inGroup.origin());
      pixelKernel().multiply(group.row(0), mask.row(0), group.pixels().size());
    }
    feather.apply(group);
    composite(target, group, part.x, part.y, opacity, layer.blendMode);
  }

  void drawContents(const Layer& layer, Raster& target, const Rect& place, std::uint8_t opacity) {
    if (layer.backgroundColor) {
      paint(target, outlineOf(layer, place, target), *makeSolid(*layer.backgroundColor), opacity);
    }
    if (const auto* shape = std::get_if<ShapeContent>(&layer.content)) {
      drawShape(*shape, target, place.origin(), opacity);
    } else if (const auto source = paintOf(layer, place)) {
      Polygons bounds;
      addOutline(bounds, {place, 0, false}, {}, scale_);
      paint(target, coverageOf(bounds, FillRule::nonZero, target.bounds()), *source, opacity);
    }
    for (const Layer* sublayer : inDrawingOrder(layer)) {
      draw(*sublayer, target, place.origin());
    }
  }

  void drawShape(const ShapeContent& shape, Raster& target, Point origin, std::uint8_t opacity) {
    if (shape.fill) {
      paint(target, fillOf(shape, origin, target), *makeSolid(*shape.fill), opacity);
    }
    if (shape.stroke) {
      paint(target, strokeOf(shape, origin, target), *makeSolid(*shape.stroke), opacity);
    }
  }

  std::vector<CoverageSpan> fillOf(const ShapeContent& shape, Point origin,
                                   const Raster& target) const {
    Polygons inside;
    for (const RoundedRect& part : shape.path) {
      addOutline(inside, part, origin, scale_);
    }
    const FillRule rule = shape.isEvenOdd ? FillRule::evenOdd : FillRule::nonZero;
    return coverageOf(inside, rule, target.bounds());
  }

  std::vector<CoverageSpan> strokeOf(const ShapeContent& shape, Point origin,
                                     const Raster& target) const {
    Polygons lines;
    for (const RoundedRect& part : shape.path) {
      addStroke(lines, part, shape.lineWidth, origin, scale_);
    }
    return coverageOf(lines, FillRule::nonZero, target.bounds());
  }

  /// Null where the layer has neither a gradient nor an image, or nothing is to be seen of it.
  std::unique_ptr<Paint> paintOf(const Layer& layer, const Rect& place) const {
    const Rect pixels{place.x * scale_, place.y * scale_, place.width * scale_,
                      place.height * scale_};
    if (const auto* gradient = std::get_if<GradientContent>(&layer.content)) {
      return makeGradient(*gradient, pixels);
    }
    if (const auto* image = std::get_if<ImageContent>(&layer.content)) {
      return makeImage(*image, pixels);
    }
    return nullptr;
  }

  std::vector<CoverageSpan> outlineOf(const Layer& layer, const Rect& place,
                                      const Raster& target) const {
    Polygons outline;
    addOutline(outline, {place, layer.cornerRadius, layer.hasContinuousCorners}, {}, scale_);
    return coverageOf(outline, FillRule::nonZero, target.bounds());
  }

  static std::vector<const Layer*> inDrawingOrder(const Layer& layer) {
    std::vector<const Layer*> order;
    for (const auto& sublayer : layer.sublayers) {
      if (sublayer) {
        order.push_back(sublayer.get());
      }
    }
    std::stable_sort(order.begin(), order.end(), [](const Layer* a, const Layer* b) {
      return finiteOr0(a->zPosition) < finiteOr0(b->zPosition);
    });
    return order;
  }

  /// Where the layer may draw at most, in pixels, feathering included.
  PixelRect extentOf(const Layer& layer, const Rect& place) const {
    const auto* shape = std::get_if<ShapeContent>(&layer.content);
    Rect extent = place;
    if (!layer.masksToBounds) {
      if (!layer.sublayers.empty()) {
        return everywhere;
      }
      for (std::size_t i = 0; shape && i < shape->path.size(); ++i) {
        const double outset = shape->stroke ? std::max(finiteOr0(shape->lineWidth), 0.0) / 2 : 0;
        const Rect part = finiteOr0(shape->path[i].rect).offset(place.x, place.y);
        extent = united(extent, part.inset(-outset, -outset));
      }
    }
    return pixelsOf(extent).inset(-GaussianBlur(layer.featherRadius * scale_).reach());
  }

  PixelRect pixelsOf(const Rect& rect) const {
    if (rect.isEmpty()) {
      return {};
    }
    // Coordinates and the scale are limited, so these fit.
    const auto left = static_cast<int>(std::floor(rect.minX() * scale_));
    const auto top = static_cast<int>(std::floor(rect.minY() * scale_));
    return {left, top, static_cast<int>(std::ceil(rect.maxX() * scale_)) - left,
            static_cast<int>(std::ceil(rect.maxY() * scale_)) - top};
  }

  double scale_;
  std::vector<const Layer*> ancestors_;
};

}  // namespace

LayerRenderer::LayerRenderer(double scale)
    : scale_(scale > 0 ? std::min(scale, largestScale) : 1) {}

void LayerRenderer::render(const Layer& layer, Raster& target, Point origin) const {
  if (!target.isEmpty()) {
    Drawing(scale_).draw(layer, target, {finiteOr0(origin.x), finiteOr0(origin.y)});
  }
}

}  // namespace plemora
