#include "views/capsule_item.h"

#include <QLinearGradient>
#include <QPainter>
#include <algorithm>

namespace plemora {

namespace {

constexpr int shadowSteps = 6;
constexpr double shadowStrength = 0.3;

void drawCapsule(QPainter& painter, const QRectF& rect, const QBrush& brush) {
  const double radius = std::min(rect.width(), rect.height()) / 2;
  painter.setBrush(brush);
  painter.drawRoundedRect(rect, radius, radius);
}

}  // namespace

CapsuleItem::CapsuleItem(QQuickItem* parent) : QQuickPaintedItem(parent) {
  setAntialiasing(true);
  connect(this, &CapsuleItem::changed, this, [this] { update(); });
}

void CapsuleItem::setColor(const QColor& color) {
  if (color != color_) {
    color_ = color;
    emit changed();
  }
}

void CapsuleItem::setBottomColor(const QColor& color) {
  if (color != bottomColor_) {
    bottomColor_ = color;
    emit changed();
  }
}

void CapsuleItem::setShadow(double shadow) {
  if (shadow != shadow_) {
    shadow_ = shadow;
    emit changed();
  }
}

void CapsuleItem::paint(QPainter* painter) {
  painter->setRenderHint(QPainter::Antialiasing);
  painter->setPen(Qt::NoPen);
  const QRectF body = boundingRect().adjusted(shadow_, shadow_, -shadow_, -shadow_);
  if (shadow_ > 0) {
    // Capsules that grow and add up to a smooth edge, a little lower than what casts them.
    QColor dark(Qt::black);
    dark.setAlphaF(static_cast<float>(shadowStrength / shadowSteps));
    for (int i = shadowSteps; i > 0; --i) {
      const double reach = shadow_ * 0.75 * i / shadowSteps;
      drawCapsule(*painter,
                  body.adjusted(-reach, -reach, reach, reach).translated(0, shadow_ * 0.25), dark);
    }
  }
  QLinearGradient gradient(body.topLeft(), body.bottomLeft());
  gradient.setColorAt(0, color_);
  gradient.setColorAt(1, bottomColor());
  drawCapsule(*painter, body, bottomColor() == color_ ? QBrush(color_) : QBrush(gradient));
}

}  // namespace plemora
