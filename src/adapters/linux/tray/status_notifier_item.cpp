#include "adapters/linux/tray/status_notifier_item.h"

#include <QDBusObjectPath>
#include <QMetaObject>
#include <utility>

#include "adapters/linux/tray/bus_menu.h"

namespace plemora {

namespace {

constexpr char introspection[] =
    "<interface name=\"org.kde.StatusNotifierItem\">"
    "<property name=\"Category\" type=\"s\" access=\"read\"/>"
    "<property name=\"Id\" type=\"s\" access=\"read\"/>"
    "<property name=\"Title\" type=\"s\" access=\"read\"/>"
    "<property name=\"Status\" type=\"s\" access=\"read\"/>"
    "<property name=\"WindowId\" type=\"i\" access=\"read\"/>"
    "<property name=\"IconThemePath\" type=\"s\" access=\"read\"/>"
    "<property name=\"Menu\" type=\"o\" access=\"read\"/>"
    "<property name=\"ItemIsMenu\" type=\"b\" access=\"read\"/>"
    "<property name=\"IconName\" type=\"s\" access=\"read\"/>"
    "<property name=\"IconPixmap\" type=\"a(iiay)\" access=\"read\"/>"
    "<property name=\"OverlayIconName\" type=\"s\" access=\"read\"/>"
    "<property name=\"OverlayIconPixmap\" type=\"a(iiay)\" access=\"read\"/>"
    "<property name=\"AttentionIconName\" type=\"s\" access=\"read\"/>"
    "<property name=\"AttentionIconPixmap\" type=\"a(iiay)\" access=\"read\"/>"
    "<property name=\"AttentionMovieName\" type=\"s\" access=\"read\"/>"
    "<property name=\"ToolTip\" type=\"(sa(iiay)ss)\" access=\"read\"/>"
    "<method name=\"ContextMenu\"><arg name=\"x\" type=\"i\" direction=\"in\"/>"
    "<arg name=\"y\" type=\"i\" direction=\"in\"/></method>"
    "<method name=\"Activate\"><arg name=\"x\" type=\"i\" direction=\"in\"/>"
    "<arg name=\"y\" type=\"i\" direction=\"in\"/></method>"
    "<method name=\"SecondaryActivate\"><arg name=\"x\" type=\"i\" direction=\"in\"/>"
    "<arg name=\"y\" type=\"i\" direction=\"in\"/></method>"
    "<method name=\"Scroll\"><arg name=\"delta\" type=\"i\" direction=\"in\"/>"
    "<arg name=\"orientation\" type=\"s\" direction=\"in\"/></method>"
    "<method name=\"ProvideXdgActivationToken\">"
    "<arg name=\"token\" type=\"s\" direction=\"in\"/></method>"
    "<signal name=\"NewTitle\"/><signal name=\"NewIcon\"/><signal name=\"NewAttentionIcon\"/>"
    "<signal name=\"NewOverlayIcon\"/><signal name=\"NewMenu\"/><signal name=\"NewToolTip\"/>"
    "<signal name=\"NewStatus\"><arg name=\"status\" type=\"s\"/></signal></interface>";

constexpr char title[] = "Plemora";

}  // namespace

StatusNotifierItem::StatusNotifierItem(QDBusConnection bus, Handlers handlers)
    : BusObject(std::move(bus), {notifierItemPath, "org.kde.StatusNotifierItem", introspection}),
      handlers_(std::move(handlers)) {
  registerTrayTypes();
  offerPlace("Activate", handlers_.activated);
  offerPlace("SecondaryActivate", handlers_.secondaryActivated);
  offerPlace("ContextMenu", handlers_.menuWanted);
  offer("Scroll", {"is", [this](const QVariantList& a) {
                     const bool isVertical =
                         a.at(1).toString().compare("horizontal", Qt::CaseInsensitive) != 0;
                     const int steps = isVertical ? steps_.add(a.at(0).toInt()) : 0;
                     if (steps != 0 && handlers_.scrolled) {
                       later([this, steps] { handlers_.scrolled(steps); });
                     }
                     return QVariantList();
                   }});
  // A token lets a window take the focus on Wayland; the toolkit reads it from the environment.
  offer("ProvideXdgActivationToken", {"s", [](const QVariantList& a) {
                                        qputenv("XDG_ACTIVATION_TOKEN",
                                                a.at(0).toString().toUtf8());
                                        return QVariantList();
                                      }});
}

void StatusNotifierItem::setIcon(std::function<QList<TrayPixmap>()> draw) {
  draw_ = std::move(draw);
  icon_.reset();
  send("NewIcon");
}

void StatusNotifierItem::setToolTip(const QString& text) {
  if (text != text_) {
    text_ = text;
    send("NewToolTip");
  }
}

QVariantMap StatusNotifierItem::properties() const {
  if (!icon_) {
    icon_ = draw_ ? draw_() : QList<TrayPixmap>();
  }
  const QVariant none = QVariant::fromValue(QList<TrayPixmap>());
  return {{"Category", "Hardware"},
          {"Id", "plemora"},
          {"Title", title},
          {"Status", "Active"},
          {"WindowId", 0},
          {"IconThemePath", ""},
          {"Menu", QVariant::fromValue(QDBusObjectPath(busMenuPath))},
          {"ItemIsMenu", false},
          {"IconName", ""},
          {"IconPixmap", QVariant::fromValue(*icon_)},
          {"OverlayIconName", ""},
          {"OverlayIconPixmap", none},
          {"AttentionIconName", ""},
          {"AttentionIconPixmap", none},
          {"AttentionMovieName", ""},
          {"ToolTip", QVariant::fromValue(TrayToolTip{"", {}, title, text_})}};
}

void StatusNotifierItem::offerPlace(const QString& name, std::function<void(QPoint)> handler) {
  offer(name, {"ii", [this, handler = std::move(handler)](const QVariantList& a) {
                 if (handler) {
                   const QPoint place(a.at(0).toInt(), a.at(1).toInt());
                   later([handler, place] { handler(place); });
                 }
                 return QVariantList();
               }});
}

void StatusNotifierItem::later(std::function<void()> work) {
  QMetaObject::invokeMethod(this, std::move(work), Qt::QueuedConnection);
}

}  // namespace plemora
