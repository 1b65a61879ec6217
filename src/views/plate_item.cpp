#include "views/plate_item.h"

#include <QLinearGradient>
#include <QPainter>

namespace plemora {

namespace {

constexpr int shadowSteps = 8;
// In widths of the border.
constexpr double dash = 3;
constexpr double dashGap = 2.5;

}  // namespace

PlateItem::PlateItem(QQuickItem* parent) : QQuickPaintedItem(parent) {
  setAntialiasing(true);
  connect(this, &PlateItem::changed, this, [this] { update(); });
}

void PlateItem::paint(QPainter* painter) {
  painter->setRenderHint(QPainter::Antialiasing);
  painter->setPen(Qt::NoPen);
  const QRectF body = boundingRect().adjusted(shadow_, shadow_, -shadow_, -shadow_);
  if (shadow_ > 0) {
    // Plates that grow and add up to a smooth edge, a little lower than what casts them.
    QColor dark(Qt::black);
    dark.setAlphaF(static_cast<float>(shadowStrength_ / shadowSteps));
    painter->setBrush(dark);
    for (int i = shadowSteps; i > 0; --i) {
      const double reach = shadow_ * 0.75 * i / shadowSteps;
      painter->drawRoundedRect(
          body.adjusted(-reach, -reach, reach, reach).translated(0, shadow_ * 0.25),
          radius_ + reach, radius_ + reach);
    }
  }
  QLinearGradient gradient(body.topLeft(), body.bottomLeft());
  gradient.setColorAt(0, color_);
  gradient.setColorAt(1, bottomColor_.isValid() ? bottomColor_ : color_);
  painter->setBrush(gradient);
  painter->drawRoundedRect(body, radius_, radius_);
  if (borderWidth_ > 0) {
    QPen pen(borderColor_, borderWidth_);
    if (isDashed_) {
      pen.setDashPattern({dash, dashGap});
    }
    painter->setPen(pen);
    painter->setBrush(Qt::NoBrush);
    const double half = borderWidth_ / 2;
    painter->drawRoundedRect(body.adjusted(half, half, -half, -half), radius_ - half,
                             radius_ - half);
  }
}

}  // namespace plemora
