#include "adapters/linux/tray/bus_menu.h"

#include <QMetaObject>
#include <algorithm>
#include <utility>

namespace plemora {

namespace {

constexpr char introspection[] =
    "<interface name=\"com.canonical.dbusmenu\">"
    "<property name=\"Version\" type=\"u\" access=\"read\"/>"
    "<property name=\"TextDirection\" type=\"s\" access=\"read\"/>"
    "<property name=\"Status\" type=\"s\" access=\"read\"/>"
    "<property name=\"IconThemePath\" type=\"as\" access=\"read\"/>"
    "<method name=\"GetLayout\"><arg name=\"parentId\" type=\"i\" direction=\"in\"/>"
    "<arg name=\"recursionDepth\" type=\"i\" direction=\"in\"/>"
    "<arg name=\"propertyNames\" type=\"as\" direction=\"in\"/>"
    "<arg name=\"revision\" type=\"u\" direction=\"out\"/>"
    "<arg name=\"layout\" type=\"(ia{sv}av)\" direction=\"out\"/></method>"
    "<method name=\"GetGroupProperties\"><arg name=\"ids\" type=\"ai\" direction=\"in\"/>"
    "<arg name=\"propertyNames\" type=\"as\" direction=\"in\"/>"
    "<arg name=\"properties\" type=\"a(ia{sv})\" direction=\"out\"/></method>"
    "<method name=\"GetProperty\"><arg name=\"id\" type=\"i\" direction=\"in\"/>"
    "<arg name=\"name\" type=\"s\" direction=\"in\"/>"
    "<arg name=\"value\" type=\"v\" direction=\"out\"/></method>"
    "<method name=\"Event\"><arg name=\"id\" type=\"i\" direction=\"in\"/>"
    "<arg name=\"eventId\" type=\"s\" direction=\"in\"/>"
    "<arg name=\"data\" type=\"v\" direction=\"in\"/>"
    "<arg name=\"timestamp\" type=\"u\" direction=\"in\"/></method>"
    "<method name=\"EventGroup\"><arg name=\"events\" type=\"a(isvu)\" direction=\"in\"/>"
    "<arg name=\"idErrors\" type=\"ai\" direction=\"out\"/></method>"
    "<method name=\"AboutToShow\"><arg name=\"id\" type=\"i\" direction=\"in\"/>"
    "<arg name=\"needUpdate\" type=\"b\" direction=\"out\"/></method>"
    "<method name=\"AboutToShowGroup\"><arg name=\"ids\" type=\"ai\" direction=\"in\"/>"
    "<arg name=\"updatesNeeded\" type=\"ai\" direction=\"out\"/>"
    "<arg name=\"idErrors\" type=\"ai\" direction=\"out\"/></method>"
    "<signal name=\"ItemsPropertiesUpdated\"><arg name=\"updated\" type=\"a(ia{sv})\"/>"
    "<arg name=\"removed\" type=\"a(ias)\"/></signal>"
    "<signal name=\"LayoutUpdated\"><arg name=\"revision\" type=\"u\"/>"
    "<arg name=\"parent\" type=\"i\"/></signal>"
    "<signal name=\"ItemActivationRequested\"><arg name=\"id\" type=\"i\"/>"
    "<arg name=\"timestamp\" type=\"u\"/></signal></interface>";

/// An underline marks the key that chooses an item, unless it is doubled.
QString label(const std::string& title) {
  return QString::fromStdString(title).replace("_", "__");
}

bool looksLike(const MenuItem& a, const MenuItem& b) {
  return a.title == b.title && a.keyEquivalent == b.keyEquivalent;
}

QVariantMap chosen(const QVariantMap& all, const QStringList& names) {
  if (names.isEmpty()) {
    return all;
  }
  QVariantMap some;
  for (const QString& name : names) {
    if (all.contains(name)) {
      some.insert(name, all.value(name));
    }
  }
  return some;
}

}  // namespace

BusMenu::BusMenu(QDBusConnection bus, Items items)
    : BusObject(std::move(bus), {busMenuPath, "com.canonical.dbusmenu", introspection}),
      provider_(std::move(items)) {
  registerTrayTypes();
  offer("GetLayout", {"iias", [this](const QVariantList& a) { return layout(a); }});
  offer("GetGroupProperties",
        {"aias", [this](const QVariantList& a) { return groupProperties(a); }});
  offer("GetProperty", {"is", [this](const QVariantList& a) {
                          refreshOnce();
                          const QString name = a.at(1).toString();
                          const QVariant value =
                              propertiesOf(a.at(0).toInt(), {name}).value(name, QString());
                          return QVariantList{QVariant::fromValue(QDBusVariant(value))};
                        }});
  offer("Event", {"isvu", [this](const QVariantList& a) {
                    event(a.at(0).toInt(), a.at(1).toString());
                    return QVariantList();
                  }});
  offer("EventGroup", {"a(isvu)", [this](const QVariantList& a) {
                         QList<int> unknown;
                         for (const MenuEvent& one : qdbus_cast<QList<MenuEvent>>(a.at(0))) {
                           if (isKnown(one.id)) {
                             event(one.id, one.type);
                           } else {
                             unknown << one.id;
                           }
                         }
                         return QVariantList{QVariant::fromValue(unknown)};
                       }});
  offer("AboutToShow", {"i", [this](const QVariantList& a) {
                          return QVariantList{aboutToShow(a.at(0).toInt())};
                        }});
  offer("AboutToShowGroup",
        {"ai", [this](const QVariantList& a) {
           QList<int> changed, unknown;
           for (const int id : qdbus_cast<QList<int>>(a.at(0))) {
             if (!isKnown(id)) {
               unknown << id;
             } else if (aboutToShow(id)) {
               changed << id;
             }
           }
           return QVariantList{QVariant::fromValue(changed), QVariant::fromValue(unknown)};
         }});
}

QVariantMap BusMenu::properties() const {
  return {{"Version", 3u},
          {"TextDirection", "ltr"},
          {"Status", "normal"},
          {"IconThemePath", QStringList()}};
}

bool BusMenu::refresh() {
  std::vector<MenuItem> items = provider_ ? provider_() : std::vector<MenuItem>();
  const bool isSame = revision_ > 0 && std::equal(items.begin(), items.end(), items_.begin(),
                                                  items_.end(), looksLike);
  if (!isSame) {
    firstId_ += static_cast<int>(items_.size());
    ++revision_;
  }
  items_ = std::move(items);
  return !isSame;
}

void BusMenu::refreshOnce() {
  if (revision_ == 0) {
    refresh();
  }
}

bool BusMenu::aboutToShow(int id) {
  if (id != rootId || !refresh()) {
    return false;
  }
  send("LayoutUpdated", {revision_, rootId});
  return true;
}

void BusMenu::event(int id, const QString& type) {
  if (type == "opened") {
    aboutToShow(id);
  } else if (const MenuItem* item = find(id); item && type == "clicked" && item->action) {
    // After the answer: the action may take long, or end the program.
    QMetaObject::invokeMethod(this, item->action, Qt::QueuedConnection);
  }
}

const MenuItem* BusMenu::find(int id) const {
  const int index = id - firstId_;
  return index >= 0 && index < static_cast<int>(items_.size())
             ? &items_[static_cast<std::size_t>(index)]
             : nullptr;
}

QVariantMap BusMenu::propertiesOf(int id, const QStringList& names) const {
  if (id == rootId) {
    return chosen({{"children-display", "submenu"}}, names);
  }
  const MenuItem* item = find(id);
  if (!item) {
    return {};
  }
  if (item->title.empty()) {
    return chosen({{"type", "separator"}, {"visible", true}}, names);
  }
  QVariantMap all{{"label", label(item->title)},
                  {"enabled", static_cast<bool>(item->action)},
                  {"visible", true}};
  if (!item->keyEquivalent.empty()) {
    const QStringList keys{"Control", QString::fromStdString(item->keyEquivalent)};
    all.insert("shortcut", QVariant::fromValue(QList<QStringList>{keys}));
  }
  return chosen(all, names);
}

QVariantList BusMenu::layout(const QVariantList& arguments) {
  refreshOnce();
  const int parent = arguments.at(0).toInt();
  const int depth = arguments.at(1).toInt();
  const QStringList names = arguments.at(2).toStringList();
  MenuLayout top{parent, propertiesOf(parent, names), {}};
  if (parent == rootId && depth != 0) {
    for (std::size_t i = 0; i < items_.size(); ++i) {
      const int id = firstId_ + static_cast<int>(i);
      top.children << QDBusVariant(
          QVariant::fromValue(MenuLayout{id, propertiesOf(id, names), {}}));
    }
  }
  return {revision_, QVariant::fromValue(top)};
}

QVariantList BusMenu::groupProperties(const QVariantList& arguments) {
  refreshOnce();
  QList<int> ids = qdbus_cast<QList<int>>(arguments.at(0));
  const QStringList names = arguments.at(1).toStringList();
  if (ids.isEmpty()) {
    ids << rootId;
    for (std::size_t i = 0; i < items_.size(); ++i) {
      ids << firstId_ + static_cast<int>(i);
    }
  }
  QList<MenuItemProperties> group;
  for (const int id : std::as_const(ids)) {
    if (isKnown(id)) {
      group << MenuItemProperties{id, propertiesOf(id, names)};
    }
  }
  return {QVariant::fromValue(group)};
}

}  // namespace plemora
