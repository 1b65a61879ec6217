#pragma once

#include <QColor>
#include <QImage>
#include <QSize>
#include <QString>
#include <optional>

namespace plemora {

/// A picture of a named symbol in one colour.
struct SymbolRequest {
  QString name;                         ///< such as "speaker.wave.3.fill"
  std::optional<double> variableValue;  ///< 0...1; none: drawn whole
  QColor color = Qt::white;
  QSize pixels;  ///< the symbol is fitted into it, centred
};

/// Whether there is a drawing for that name.
bool hasSymbol(const QString& name);

/// Draws the symbol from this program's own set; an unknown one as "speaker.wave.2.fill".
/// Premultiplied ARGB. Empty when the size is empty or above 4096 pixels. GUI thread.
QImage symbolImage(const SymbolRequest& request);

/// How strongly a wave of a symbol with a variable value is drawn: they fill one after the other,
/// each of them continuously. index counts from 0.
double waveOpacity(double value, int index, int count);

}  // namespace plemora
