#include "adapters/linux/tray/bus_object.h"

#include <QDBusError>
#include <QDBusMessage>
#include <QDBusVariant>
#include <utility>

namespace plemora {

namespace {

constexpr char propertiesInterface[] = "org.freedesktop.DBus.Properties";

}  // namespace

BusObject::BusObject(QDBusConnection bus, Name name)
    : bus_(std::move(bus)),
      name_(std::move(name)),
      isOnBus_(bus_.registerVirtualObject(name_.path, this)) {}

BusObject::~BusObject() {
  if (isOnBus_) {
    bus_.unregisterObject(name_.path);
  }
}

QString BusObject::introspect(const QString&) const {
  return name_.introspection;
}

bool BusObject::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
  const bool isOurs = message.interface() == name_.interface || message.interface().isEmpty();
  if (!isOurs && message.interface() != propertiesInterface) {
    return false;
  }
  connection.send(isOurs ? answer(message) : answerProperties(message));
  return true;
}

void BusObject::send(const QString& signal, const QVariantList& arguments) {
  auto message = QDBusMessage::createSignal(name_.path, name_.interface, signal);
  message.setArguments(arguments);
  bus_.send(message);
}

QDBusMessage BusObject::answer(const QDBusMessage& message) const {
  const auto method = methods_.find(message.member());
  if (method == methods_.end()) {
    return message.createErrorReply(
        QDBusError::UnknownMethod,
        "there is no method \"" + message.member() + "\" in " + name_.interface);
  }
  if (message.signature() != method->second.signature) {
    return message.createErrorReply(
        QDBusError::InvalidArgs, message.member() + " takes arguments of signature \"" +
                                     method->second.signature + "\", not \"" + message.signature() +
                                     "\"");
  }
  return message.createReply(method->second.call(message.arguments()));
}

QDBusMessage BusObject::answerProperties(const QDBusMessage& message) const {
  const QVariantList arguments = message.arguments();
  const QVariantMap values = properties();
  if (message.member() == "GetAll" && message.signature() == "s") {
    return message.createReply(QVariantList{values});
  }
  if (message.member() == "Get" && message.signature() == "ss") {
    const QString name = arguments.at(1).toString();
    if (const auto value = values.find(name); value != values.end()) {
      return message.createReply(QVariantList{QVariant::fromValue(QDBusVariant(*value))});
    }
    return message.createErrorReply(QDBusError::UnknownProperty,
                                    "there is no property \"" + name + "\"");
  }
  if (message.member() == "Set" && message.signature() == "ssv") {
    return message.createErrorReply(
        QDBusError::PropertyReadOnly,
        "property " + arguments.at(1).toString() + " cannot be changed from outside");
  }
  return message.createErrorReply(QDBusError::UnknownMethod,
                                  "there is no method \"" + message.member() +
                                      "\" of that signature in " + propertiesInterface);
}

}  // namespace plemora
