#include "views/symbol_image.h"

#include <QFile>
#include <QPainter>
#include <QSvgRenderer>
#include <algorithm>
#include <cmath>

namespace plemora {

namespace {

constexpr int waves = 3;
constexpr double emptyWaveOpacity = 0.28;
constexpr int largestSide = 4096;

QString fileOf(const QString& name) {
  return ":/plemora/symbols/" + name + ".svg";
}

QByteArray drawing(const QString& name) {
  QFile file(fileOf(name));
  if (!file.open(QIODevice::ReadOnly)) {
    file.setFileName(fileOf("speaker.wave.2.fill"));
    if (!file.open(QIODevice::ReadOnly)) {
      return {};
    }
  }
  return file.readAll();
}

/// Each wave of the drawing is a group of its own, named after its place.
void fillWaves(QByteArray& svg, double value) {
  for (int i = 0; i < waves; ++i) {
    const QByteArray id = "id=\"wave" + QByteArray::number(i + 1) + "\"";
    svg.replace(id, id + " opacity=\"" + QByteArray::number(waveOpacity(value, i, waves)) + "\"");
  }
}

}  // namespace

bool hasSymbol(const QString& name) {
  return QFile::exists(fileOf(name));
}

double waveOpacity(double value, int index, int count) {
  const double filled = std::isnan(value) ? 1 : std::clamp(value * count - index, 0.0, 1.0);
  return emptyWaveOpacity + (1 - emptyWaveOpacity) * filled;
}

QImage symbolImage(const SymbolRequest& request) {
  if (request.pixels.isEmpty() ||
      std::max(request.pixels.width(), request.pixels.height()) > largestSide) {
    return {};
  }
  QByteArray svg = drawing(request.name);
  if (request.variableValue) {
    fillWaves(svg, *request.variableValue);
  }
  QSvgRenderer renderer(svg);
  QImage image(request.pixels, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  const QSizeF size = QSizeF(renderer.defaultSize()).scaled(request.pixels, Qt::KeepAspectRatio);
  const QPointF origin((request.pixels.width() - size.width()) / 2,
                       (request.pixels.height() - size.height()) / 2);
  QPainter painter(&image);
  renderer.render(&painter, QRectF(origin, size));
  painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
  painter.fillRect(image.rect(), request.color);
  return image;
}

}  // namespace plemora
