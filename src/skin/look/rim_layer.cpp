#include "skin/look/rim_layer.h"

#include <algorithm>

namespace plemora {

namespace {

std::shared_ptr<Layer> makeStroke(double alpha, double lineWidth) {
  auto layer = std::make_shared<Layer>();
  layer->content = ShapeContent{.path = {},
                                .isEvenOdd = false,
                                .fill = std::nullopt,
                                .stroke = Color::white(alpha),
                                .lineWidth = lineWidth};
  return layer;
}

void setOutline(Layer& stroke, const Size& size, double cornerRadius, double inset) {
  stroke.frame = {0, 0, size.width, size.height};
  std::get<ShapeContent>(stroke.content).path = {
      {stroke.frame.inset(inset, inset), std::max(cornerRadius - inset, 0.0)}};
}

}  // namespace

RimLayer::RimLayer(double top, double rest)
    : retina_{top, rest},
      layer_(std::make_shared<Layer>()),
      gradient_(std::make_shared<Layer>()),
      stroke_(makeStroke(1, 1.0)) {
  gradient_->content =
      GradientContent{.colors = {Color::white(top), Color::white(rest), Color::white(rest)},
                      .locations = {0, 0.12, 1}};
  gradient_->mask = stroke_;
  layer_->sublayers.push_back(gradient_);
}

void RimLayer::update(const Size& size, double cornerRadius, bool flipped, double scale) {
  if (scale >= 2.0 && scale_ < 2.0) {
    becomeRetina();
  }
  scale_ = scale;
  const Rect frame{0, 0, size.width, size.height};
  layer_->frame = frame;
  gradient_->frame = frame;
  // From the visible top downwards: in a view whose y points up that is from 1 to 0, in a flipped
  // one from 0 to 1. The record's y always points down.
  const auto downwards = [flipped](double y) { return flipped ? y : 1 - y; };
  auto& gradient = std::get<GradientContent>(gradient_->content);
  gradient.start = {0.5, downwards(flipped ? 0 : 1)};
  gradient.end = {0.5, downwards(flipped ? 1 : 0)};
  if (inner_) {
    setOutline(*stroke_, size, cornerRadius, 0.25);
    setOutline(*inner_, size, cornerRadius, 0.75);
  } else {
    setOutline(*stroke_, size, cornerRadius, 0.5);
  }
}

void RimLayer::becomeRetina() {
  if (inner_) {
    return;
  }
  auto& gradient = std::get<GradientContent>(gradient_->content);
  gradient.colors = {Color::white(retina_.top), Color::white(retina_.top)};
  gradient.locations = {0, 1};
  std::get<ShapeContent>(stroke_->content).lineWidth = 0.5;
  inner_ = makeStroke(retina_.rest, 0.5);
  inner_->name = "inner";
  layer_->sublayers.push_back(inner_);
}

}  // namespace plemora
