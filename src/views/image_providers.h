#pragma once

#include <QQuickImageProvider>

namespace plemora {

/// Serves "image://symbol/NAME?color=AARRGGBB&value=0.5" to QML: a symbol in one colour, in as many
/// pixels as are asked for. The colour may be RRGGBB; without a value the symbol is drawn whole.
class SymbolProvider : public QQuickImageProvider {
 public:
  SymbolProvider() : QQuickImageProvider(Image) {}

  QImage requestImage(const QString& id, QSize* size, const QSize& requested) override;
};

/// Serves "image://appicon/icon?source=SOURCE&name=NAME&saturation=0.3" to QML, every value encoded
/// for a URL.
class AppIconProvider : public QQuickImageProvider {
 public:
  AppIconProvider() : QQuickImageProvider(Image) {}

  QImage requestImage(const QString& id, QSize* size, const QSize& requested) override;
};

}  // namespace plemora
