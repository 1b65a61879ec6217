#pragma once

#include <QByteArray>
#include <QDBusArgument>
#include <QDBusVariant>
#include <QImage>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVariantMap>

namespace plemora {

/// One size of an icon as the bus carries it: (iiay), ARGB of 32 bits, most significant byte first.
struct TrayPixmap {
  int width = 0;
  int height = 0;
  QByteArray pixels;

  static TrayPixmap fromImage(const QImage& image);
};

/// (sa(iiay)ss)
struct TrayToolTip {
  QString iconName;
  QList<TrayPixmap> icon;
  QString title;
  QString text;
};

/// A menu item with what is below it: (ia{sv}av).
struct MenuLayout {
  int id = 0;
  QVariantMap properties;
  QList<QDBusVariant> children;
};

/// (ia{sv})
struct MenuItemProperties {
  int id = 0;
  QVariantMap properties;
};

/// (isvu)
struct MenuEvent {
  int id = 0;
  QString type;
  QDBusVariant data;
  uint timestamp = 0;
};

QDBusArgument& operator<<(QDBusArgument& argument, const TrayPixmap& pixmap);
const QDBusArgument& operator>>(const QDBusArgument& argument, TrayPixmap& pixmap);
QDBusArgument& operator<<(QDBusArgument& argument, const TrayToolTip& tip);
const QDBusArgument& operator>>(const QDBusArgument& argument, TrayToolTip& tip);
QDBusArgument& operator<<(QDBusArgument& argument, const MenuLayout& layout);
const QDBusArgument& operator>>(const QDBusArgument& argument, MenuLayout& layout);
QDBusArgument& operator<<(QDBusArgument& argument, const MenuItemProperties& item);
const QDBusArgument& operator>>(const QDBusArgument& argument, MenuItemProperties& item);
QDBusArgument& operator<<(QDBusArgument& argument, const MenuEvent& event);
const QDBusArgument& operator>>(const QDBusArgument& argument, MenuEvent& event);

/// Makes the types known to Qt's bus; any number of times.
void registerTrayTypes();

}  // namespace plemora

Q_DECLARE_METATYPE(plemora::TrayPixmap)
Q_DECLARE_METATYPE(plemora::TrayToolTip)
Q_DECLARE_METATYPE(plemora::MenuLayout)
Q_DECLARE_METATYPE(plemora::MenuItemProperties)
Q_DECLARE_METATYPE(plemora::MenuEvent)
