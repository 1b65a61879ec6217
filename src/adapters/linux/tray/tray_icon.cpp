#include "adapters/linux/tray/tray_icon.h"

#include <QColor>
#include <cmath>

#include "views/symbol_image.h"

namespace plemora {

namespace {

// Not quite black and white, as the symbolic icons around them.
constexpr QRgb lightInk = 0xfff2f2f2;
constexpr QRgb darkInk = 0xff2e2e2e;

}  // namespace

QImage trayIcon(const SymbolImage& symbol, int side, TrayShade shade) {
  return symbolImage({QString::fromStdString(symbol.name), symbol.variableValue,
                      QColor::fromRgb(shade == TrayShade::dark ? lightInk : darkInk),
                      QSize(side, side)});
}

QList<TrayPixmap> trayPixmaps(const SymbolImage& symbol, TrayShade shade) {
  QList<TrayPixmap> pixmaps;
  for (const int side : {16, 22, 24, 32, 48}) {
    pixmaps << TrayPixmap::fromImage(trayIcon(symbol, side, shade));
  }
  return pixmaps;
}

QString trayText(const SymbolImage& symbol, const std::string& label) {
  const QString what = QString::fromStdString(
      symbol.accessibilityDescription.empty() ? label : symbol.accessibilityDescription);
  return symbol.variableValue
             ? QString("%1, %2 %").arg(what).arg(std::lround(*symbol.variableValue * 100))
             : what;
}

TrayShade shadeOf(const QImage& image, TrayShade otherwise) {
  int light = 0;
  int dark = 0;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      const QRgb pixel = image.pixel(x, y);
      if (qAlpha(pixel) > 127) {
        ++(qGray(pixel) > 127 ? light : dark);
      }
    }
  }
  return light == dark ? otherwise : light > dark ? TrayShade::light : TrayShade::dark;
}

}  // namespace plemora
