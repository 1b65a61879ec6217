#include "views/figure_item.h"

#include <QPainter>
#include <algorithm>
#include <iterator>

#include "views/figures.h"

namespace plemora {

namespace {

constexpr Figure figures[] = {
    {"audio", {64, 64}, paintAudioStep},
    {"accessibility", {64, 64}, paintAccessibilityStep},
    {"controlCenter", {64, 64}, paintControlCenterStep},
    {"soundIcon", {64, 64}, paintSoundIconStep},
    {"loginItem", {64, 64}, paintLoginItemStep},
    {"trayIcon", {64, 64}, paintTrayIconStep},
    {"spinner", {24, 24}, paintSpinner},
    {"done", {24, 24}, paintDone},
    {"success", {72, 72}, paintSuccess},
    {"ripple", {64, 64}, paintRipple},
    {"stillRipple", {64, 64}, paintStillRipple},
    {"allSet", {300, 168}, paintAllSet},
};

}  // namespace

FigureItem::FigureItem(QQuickItem* parent) : QQuickPaintedItem(parent) {
  setAntialiasing(true);
  connect(this, &FigureItem::changed, this, [this] { update(); });
}

void FigureItem::paint(QPainter* painter) {
  const auto* figure = std::find_if(std::begin(figures), std::end(figures),
                                    [this](const Figure& one) { return name_ == one.name; });
  if (figure == std::end(figures)) {
    return;
  }
  const double scale = std::min(width() / figure->size.width(), height() / figure->size.height());
  painter->setRenderHint(QPainter::Antialiasing);
  painter->translate((width() - figure->size.width() * scale) / 2,
                     (height() - figure->size.height() * scale) / 2);
  painter->scale(scale, scale);
  figure->paint(*painter, phase_, color_);
}

}  // namespace plemora
