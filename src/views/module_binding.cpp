#include "views/module_binding.h"

#include <cmath>

#include "views/qt_values.h"

namespace plemora {

namespace {

QRectF rectF(const Rect& rect) {
  return {rect.x, rect.y, rect.width, rect.height};
}

ModuleSymbol forQml(const ModuleDrawing::Symbol& symbol) {
  ModuleSymbol result;
  result.name = QString::fromStdString(symbol.name);
  result.center = {symbol.center.x, symbol.center.y};
  result.size = symbol.size;
  result.color = toQColor(symbol.color);
  return result;
}

}  // namespace

ModuleBinding::ModuleBinding(SkinState& state, const ControlCenterLook& look,
                             Appearance& appearance)
    : state_(state), look_(look), isDark_(appearance.isDark()) {
  for (Published<bool>* value :
       {&state_.hasVolume, &state_.isWide, &state_.isHeadphones, &state_.isHovering}) {
    subscriptions_.push_back(value->subscribe([this](bool) { update(); }));
  }
  subscriptions_.push_back(state_.volume.subscribe([this](float) { emit volumeChanged(); }));
  subscriptions_.push_back(appearance.observe([this](bool isDark) {
    isDark_ = isDark;
    update();
  }));
  update();
}

void ModuleBinding::setWidth(double width) {
  if (width != width_) {
    width_ = width;
    update();
  }
}

void ModuleBinding::update() {
  const ModuleDrawing drawing = ModuleDrawing::of({.width = width_,
                                                   .isWide = state_.isWide.get(),
                                                   .isHeadphones = state_.isHeadphones.get(),
                                                   .isHovering = state_.isHovering.get(),
                                                   .hasVolume = state_.hasVolume.get(),
                                                   .isDark = isDark_},
                                                  look_);
  if (drawing == drawing_) {
    return;
  }
  const bool isTrackNew = drawing.track != drawing_.track;
  drawing_ = drawing;
  emit changed();
  if (isTrackNew) {
    emit volumeChanged();
  }
}

QRectF ModuleBinding::titleFrame() const {
  return rectF(ModuleDrawing::titleFrame);
}

int ModuleBinding::titlePixels() const {
  return static_cast<int>(std::ceil(drawing_.titleSize));
}

QColor ModuleBinding::foreground() const {
  return toQColor(drawing_.foreground);
}

ModuleSymbol ModuleBinding::chevron() const {
  return forQml(drawing_.chevron);
}

ModuleSymbol ModuleBinding::output() const {
  return forQml(drawing_.output);
}

ModuleSymbol ModuleBinding::loudness() const {
  return forQml(drawing_.loudness.value_or(ModuleDrawing::Symbol{}));
}

QRectF ModuleBinding::button() const {
  return rectF(drawing_.button.value_or(Rect{}));
}

QColor ModuleBinding::buttonColor() const {
  return toQColor(drawing_.buttonColor);
}

ModuleSymbol ModuleBinding::buttonSymbol() const {
  return forQml(drawing_.buttonSymbol);
}

QRectF ModuleBinding::track() const {
  return rectF(drawing_.track);
}

QColor ModuleBinding::trackColor() const {
  return toQColor(drawing_.trackColor);
}

QColor ModuleBinding::fillColor() const {
  return toQColor(drawing_.fillColor);
}

double ModuleBinding::fillWidth() const {
  return drawing_.fillWidth(static_cast<double>(state_.volume.get()));
}

QColor ModuleBinding::knobColor() const {
  return toQColor(ModuleDrawing::knobColor);
}

double ModuleBinding::knobOffset() const {
  return drawing_.knobOffset(static_cast<double>(state_.volume.get()));
}

}  // namespace plemora
