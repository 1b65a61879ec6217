#pragma once

#include <QColor>
#include <QSizeF>

class QPainter;

namespace plemora {

/// Draws a figure in its own units, from the origin to its size, at a phase of its motion (0...1).
using PaintFigure = void (*)(QPainter& painter, double phase, const QColor& color);

struct Figure {
  const char* name;
  QSizeF size;
  PaintFigure paint;
};

// The steps of setup, named after the ids of their cards: white shapes on a coloured tile.
void paintAudioStep(QPainter& painter, double phase, const QColor& color);
void paintAccessibilityStep(QPainter& painter, double phase, const QColor& color);
void paintControlCenterStep(QPainter& painter, double phase, const QColor& color);
void paintSoundIconStep(QPainter& painter, double phase, const QColor& color);
void paintLoginItemStep(QPainter& painter, double phase, const QColor& color);
void paintTrayIconStep(QPainter& painter, double phase, const QColor& color);

// Signs. Those that happen once run from 0 to 1 and stay there.
void paintSpinner(QPainter& painter, double phase, const QColor& color);
void paintDone(QPainter& painter, double phase, const QColor& color);
void paintSuccess(QPainter& painter, double phase, const QColor& color);
void paintRipple(QPainter& painter, double phase, const QColor& color);
void paintStillRipple(QPainter& painter, double phase, const QColor& color);
void paintAllSet(QPainter& painter, double phase, const QColor& color);

}  // namespace plemora
