#include "adapters/linux/tray/tray_types.h"

#include <QDBusMetaType>
#include <QtEndian>

namespace plemora {

TrayPixmap TrayPixmap::fromImage(const QImage& image) {
  const QImage argb = image.convertToFormat(QImage::Format_ARGB32);
  TrayPixmap pixmap{argb.width(), argb.height(), {}};
  pixmap.pixels.reserve(argb.width() * argb.height() * 4);
  for (int y = 0; y < argb.height(); ++y) {
    const auto* line = reinterpret_cast<const QRgb*>(argb.constScanLine(y));
    for (int x = 0; x < argb.width(); ++x) {
      const quint32 pixel = qToBigEndian<quint32>(line[x]);
      pixmap.pixels.append(reinterpret_cast<const char*>(&pixel), sizeof pixel);
    }
  }
  return pixmap;
}

QDBusArgument& operator<<(QDBusArgument& argument, const TrayPixmap& pixmap) {
  argument.beginStructure();
  argument << pixmap.width << pixmap.height << pixmap.pixels;
  argument.endStructure();
  return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, TrayPixmap& pixmap) {
  argument.beginStructure();
  argument >> pixmap.width >> pixmap.height >> pixmap.pixels;
  argument.endStructure();
  return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const TrayToolTip& tip) {
  argument.beginStructure();
  argument << tip.iconName << tip.icon << tip.title << tip.text;
  argument.endStructure();
  return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, TrayToolTip& tip) {
  argument.beginStructure();
  argument >> tip.iconName >> tip.icon >> tip.title >> tip.text;
  argument.endStructure();
  return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const MenuLayout& layout) {
  argument.beginStructure();
  argument << layout.id << layout.properties << layout.children;
  argument.endStructure();
  return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, MenuLayout& layout) {
  argument.beginStructure();
  argument >> layout.id >> layout.properties >> layout.children;
  argument.endStructure();
  return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const MenuItemProperties& item) {
  argument.beginStructure();
  argument << item.id << item.properties;
  argument.endStructure();
  return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, MenuItemProperties& item) {
  argument.beginStructure();
  argument >> item.id >> item.properties;
  argument.endStructure();
  return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const MenuEvent& event) {
  argument.beginStructure();
  argument << event.id << event.type << event.data << event.timestamp;
  argument.endStructure();
  return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, MenuEvent& event) {
  argument.beginStructure();
  argument >> event.id >> event.type >> event.data >> event.timestamp;
  argument.endStructure();
  return argument;
}

void registerTrayTypes() {
  static const bool once = [] {
    qDBusRegisterMetaType<TrayPixmap>();
    qDBusRegisterMetaType<QList<TrayPixmap>>();
    qDBusRegisterMetaType<TrayToolTip>();
    qDBusRegisterMetaType<MenuLayout>();
    qDBusRegisterMetaType<MenuItemProperties>();
    qDBusRegisterMetaType<QList<MenuItemProperties>>();
    qDBusRegisterMetaType<MenuEvent>();
    qDBusRegisterMetaType<QList<MenuEvent>>();
    qDBusRegisterMetaType<QList<QStringList>>();
    qDBusRegisterMetaType<QList<QDBusVariant>>();
    qDBusRegisterMetaType<QList<int>>();
    return true;
  }();
  static_cast<void>(once);
}

}  // namespace plemora
