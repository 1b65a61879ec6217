#pragma once

#include <QColor>

#include "base/color.h"

namespace plemora {

inline QColor toQColor(const Color& color) {
  return QColor::fromRgbF(static_cast<float>(color.red), static_cast<float>(color.green),
                          static_cast<float>(color.blue), static_cast<float>(color.alpha));
}

}  // namespace plemora
