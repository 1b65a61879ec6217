#include "adapters/linux/dbus/mixer_client.h"

#include <QDBusError>
#include <QDBusServiceWatcher>
#include <utility>

#include "adapters/linux/dbus/bus_types.h"
#include "adapters/linux/dbus/mixer_names.h"

namespace plemora {

namespace {

constexpr char propertiesInterface[] = "org.freedesktop.DBus.Properties";
constexpr int answerTimeout = 5000;  // milliseconds

ClientError clientError(const QDBusMessage& reply) {
  const std::string text = reply.errorMessage().toStdString();
  if (reply.errorName().startsWith(QLatin1String(mixerBusName) + '.')) {
    return {ClientError::Kind::refused, text};
  }
  if (reply.errorName() == QLatin1String("org.freedesktop.DBus.Error.NameHasNoOwner")) {
    return {ClientError::Kind::notRunning, "plemora is not running"};
  }
  switch (QDBusError(reply).type()) {
    case QDBusError::ServiceUnknown:
      return {ClientError::Kind::notRunning, "plemora is not running"};
    case QDBusError::Disconnected:
      return {ClientError::Kind::noSessionBus, "the session bus is gone"};
    case QDBusError::NoReply:
    case QDBusError::Timeout:
    case QDBusError::TimedOut:
      return {ClientError::Kind::failed, "plemora does not answer"};
    default:
      return {ClientError::Kind::failed, text + " (" + reply.errorName().toStdString() + ")"};
  }
}

}  // namespace

MixerClient::MixerClient(QDBusConnection bus) : bus_(std::move(bus)) {
  registerBusTypes();
}

QVariantList MixerClient::call(const char* interface, const char* method,
                               const QVariantList& arguments) {
  if (!bus_.isConnected()) {
    throw ClientError(ClientError::Kind::noSessionBus,
                      "there is no session bus: " + bus_.lastError().message().toStdString());
  }
  auto message = QDBusMessage::createMethodCall(mixerBusName, mixerObjectPath, interface, method);
  message.setArguments(arguments);
  message.setAutoStartService(false);
  const QDBusMessage reply = bus_.call(message, QDBus::Block, answerTimeout);
  if (reply.type() != QDBusMessage::ReplyMessage) {
    throw clientError(reply);
  }
  return reply.arguments();
}

QVariantList MixerClient::call(const char* method, const QVariantList& arguments) {
  return call(mixerInterface, method, arguments);
}

MixerState MixerClient::state() {
  const QVariantList reply = call(propertiesInterface, "GetAll", {mixerInterface});
  MixerState state;
  propertiesFromBus(qdbus_cast<QVariantMap>(reply.value(0)), state);
  return state;
}

AudibilityReport MixerClient::explain(const std::string& id) {
  const QVariantList reply = call("Explain", {QString::fromStdString(id)});
  return {factorsFromBus(reply.value(0)), reply.value(1).toDouble(),
          reply.value(2).toString().toStdString()};
}

MixerState MixerClient::watch(Handlers handlers) {
  handlers_ = std::move(handlers);
  bus_.connect(mixerBusName, mixerObjectPath, propertiesInterface, "PropertiesChanged", this,
               SLOT(onPropertiesChanged(QDBusMessage)));
  auto* owner = new QDBusServiceWatcher(mixerBusName, bus_,
                                        QDBusServiceWatcher::WatchForUnregistration, this);
  connect(owner, &QDBusServiceWatcher::serviceUnregistered, this, &MixerClient::onEnded);
  bus_.connect({}, "/org/freedesktop/DBus/Local", "org.freedesktop.DBus.Local", "Disconnected",
               this, SLOT(onEnded()));
  if (handlers_.levels) {
    bus_.connect(mixerBusName, mixerObjectPath, mixerInterface, "Levels", this,
                 SLOT(onLevels(QDBusMessage)));
    call("WatchLevels", {true});
  }
  watched_ = state();
  return watched_;
}

void MixerClient::onPropertiesChanged(const QDBusMessage& message) {
  const QVariantList arguments = message.arguments();
  if (arguments.value(0).toString() != QLatin1String(mixerInterface)) {
    return;
  }
  propertiesFromBus(qdbus_cast<QVariantMap>(arguments.value(1)), watched_);
  handlers_.changed(watched_);
}

void MixerClient::onLevels(const QDBusMessage& message) {
  handlers_.levels(levelsFromBus(message.arguments().value(0)));
}

void MixerClient::onEnded() {
  handlers_.ended();
}

}  // namespace plemora
