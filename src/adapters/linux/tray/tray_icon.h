#pragma once

#include <QImage>
#include <QList>
#include <QString>

#include "adapters/linux/tray/tray_types.h"
#include "platform/status_bar.h"

namespace plemora {

/// What the tray behind the icon looks like.
enum class TrayShade { dark, light };

/// The symbol in the colour that stands out from the tray, square. GUI thread.
QImage trayIcon(const SymbolImage& symbol, int side, TrayShade shade);

/// In the sizes that trays use: 16, 22, 24, 32 and 48 pixels.
QList<TrayPixmap> trayPixmaps(const SymbolImage& symbol, TrayShade shade);

/// What the item says of itself, such as "Sound, 84 %".
QString trayText(const SymbolImage& symbol, const std::string& label);

/// Whether most of the picture is light or dark; transparent pixels do not count.
TrayShade shadeOf(const QImage& image, TrayShade otherwise);

}  // namespace plemora
