#include "adapters/linux/dbus/mixer_adaptor.h"

#include <QDBusError>
#include <QDBusMessage>
#include <utility>

#include "adapters/linux/dbus/bus_types.h"
#include "adapters/linux/dbus/mixer_introspection.h"
#include "adapters/linux/dbus/mixer_names.h"

namespace plemora {

namespace {

constexpr char propertiesInterface[] = "org.freedesktop.DBus.Properties";

std::string textAt(const QDBusMessage& message, int index) {
  return message.arguments().at(index).toString().toStdString();
}

double numberAt(const QDBusMessage& message, int index) {
  return message.arguments().at(index).toDouble();
}

std::vector<std::string> wordsAt(const QDBusMessage& message, int index) {
  std::vector<std::string> words;
  for (const QString& word : message.arguments().at(index).toStringList()) {
    words.push_back(word.toStdString());
  }
  return words;
}

bool flagAt(const QDBusMessage& message, int index) {
  return message.arguments().at(index).toBool();
}

MixerAdaptor::Answer answer(ServiceResult result) {
  if (result) {
    return *result;
  }
  return QVariantList();
}

ServiceError busError(QDBusError::ErrorType type, const QString& message) {
  return {QDBusError::errorString(type).toStdString(), message.toStdString()};
}

}  // namespace

struct MixerAdaptor::Method {
  const char* name;
  const char* signature;
  std::function<Answer(MixerAdaptor&, const QDBusMessage&)> handle;
};

const std::vector<MixerAdaptor::Method>& MixerAdaptor::methods() {
  using Self = MixerAdaptor&;
  using Message = const QDBusMessage&;
  static const std::vector<Method> methods = {
      {"SetAppVolume", "sd",
       [](Self self, Message m) {
         return answer(self.service_.setAppVolume(textAt(m, 0), numberAt(m, 1)));
       }},
      {"ToggleAppMute", "s",
       [](Self self, Message m) { return answer(self.service_.toggleAppMute(textAt(m, 0))); }},
      {"SetAppMute", "sb",
       [](Self self, Message m) {
         return answer(self.service_.setAppMute(textAt(m, 0), flagAt(m, 1)));
       }},
      {"SetAppOutput", "ss",
       [](Self self, Message m) {
         return answer(self.service_.setAppOutput(textAt(m, 0), textAt(m, 1)));
       }},
      {"SetVolume", "d",
       [](Self self, Message m) { return answer(self.service_.setVolume(numberAt(m, 0))); }},
      {"SetMuted", "b",
       [](Self self, Message m) { return answer(self.service_.setMuted(flagAt(m, 0))); }},
      {"SetDefaultDevice", "s",
       [](Self self, Message m) { return answer(self.service_.setDefaultDevice(textAt(m, 0))); }},
      {"Reload", "",
       [](Self self, Message) {
         self.service_.reload();
         return Answer();
       }},
      {"Explain", "s",
       [](Self self, Message m) -> Answer {
         AudibilityReport report;
         if (auto error = self.service_.explain(textAt(m, 0), report)) {
           return *error;
         }
         return QVariantList{QVariant::fromValue(toBus(report.factors)), report.product,
                             QString::fromStdString(report.verdict)};
       }},
      {"WatchLevels", "b",
       [](Self self, Message m) { return self.watchLevels(m.service(), flagAt(m, 0)); }},
      {"Activate", "as",
       [](Self self, Message m) {
         if (self.activate_) {
           self.activate_(wordsAt(m, 0));
         }
         return Answer();
       }},
      {"Join", "as",
       [](Self self, Message m) {
         return Answer(QVariantList{self.join_ && self.join_(wordsAt(m, 0))});
       }},
      {"Quit", "",
       [](Self self, Message) {
         if (self.quit_) {
           self.quit_();
         }
         return Answer();
       }},
  };
  return methods;
}

const MixerAdaptor::Method* MixerAdaptor::findMethod(const QString& name) {
  for (const Method& method : methods()) {
    if (name == QLatin1String(method.name)) {
      return &method;
    }
  }
  return nullptr;
}

MixerAdaptor::MixerAdaptor(QDBusConnection bus, MixerService& service)
    : bus_(std::move(bus)), service_(service) {
  registerBusTypes();
  watcherEnds_.setConnection(bus_);
  watcherEnds_.setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
  QObject::connect(&watcherEnds_, &QDBusServiceWatcher::serviceUnregistered,
                   [this](const QString& client) { endWatch(client); });
  announced_ = propertiesToBus(service_.state());
  service_.setChangeHandler([this] { announceChanges(); });
}

MixerAdaptor::~MixerAdaptor() {
  service_.setChangeHandler({});
  bus_.unregisterObject(mixerObjectPath);
}

bool MixerAdaptor::registerObject() {
  return bus_.registerVirtualObject(mixerObjectPath, this);
}

void MixerAdaptor::setActivateHandler(
    std::function<void(const std::vector<std::string>&)> handler) {
  activate_ = std::move(handler);
}

void MixerAdaptor::setJoinHandler(std::function<bool(const std::vector<std::string>&)> handler) {
  join_ = std::move(handler);
}

void MixerAdaptor::setQuitHandler(std::function<void()> handler) {
  quit_ = std::move(handler);
}

QString MixerAdaptor::introspect(const QString&) const {
  return QString::fromLatin1(mixerIntrospection);
}

bool MixerAdaptor::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
  Answer result;
  if (message.interface() == QLatin1String(propertiesInterface)) {
    result = callProperties(message);
  } else if (message.interface() == QLatin1String(mixerInterface) ||
             (message.interface().isEmpty() && findMethod(message.member()) != nullptr)) {
    result = call(message);
  } else {
    return false;
  }
  if (const auto* error = std::get_if<ServiceError>(&result)) {
    connection.send(message.createErrorReply(QString::fromStdString(error->name),
                                             QString::fromStdString(error->message)));
  } else {
    connection.send(message.createReply(std::get<QVariantList>(result)));
  }
  return true;
}

MixerAdaptor::Answer MixerAdaptor::call(const QDBusMessage& message) {
  const Method* method = findMethod(message.member());
  if (method == nullptr) {
    return busError(QDBusError::UnknownMethod, "there is no method \"" + message.member() +
                                                   "\" in " + mixerInterface +
                                                   "; introspection lists them");
  }
  if (message.signature() != QLatin1String(method->signature)) {
    return busError(QDBusError::InvalidArgs, message.member() + " takes arguments of signature \"" +
                                                 method->signature + "\", not \"" +
                                                 message.signature() + "\"");
  }
  return method->handle(*this, message);
}

MixerAdaptor::Answer MixerAdaptor::callProperties(const QDBusMessage& message) const {
  const QString member = message.member();
  const QString signature = message.signature();
  const QVariantList arguments = message.arguments();
  const bool isKnown = (member == "Get" && signature == "ss") ||
                       (member == "GetAll" && signature == "s") ||
                       (member == "Set" && signature == "ssv");
  if (!isKnown) {
    return busError(QDBusError::UnknownMethod, "there is no method \"" + member +
                                                   "\" with signature \"" + signature + "\" in " +
                                                   propertiesInterface);
  }
  const QString interface = arguments.at(0).toString();
  if (!interface.isEmpty() && interface != QLatin1String(mixerInterface)) {
    return busError(QDBusError::UnknownInterface,
                    "there is no interface \"" + interface + "\" here, only " + mixerInterface);
  }
  const QVariantMap properties = propertiesToBus(service_.state());
  if (member == "GetAll") {
    return QVariantList{properties};
  }
  const QString name = arguments.at(1).toString();
  if (!properties.contains(name)) {
    return busError(QDBusError::UnknownProperty,
                    "there is no property \"" + name + "\"; introspection lists them");
  }
  if (member == "Set") {
    return busError(QDBusError::PropertyReadOnly,
                    "property " + name + " is changed by the methods of the interface");
  }
  return QVariantList{QVariant::fromValue(QDBusVariant(properties.value(name)))};
}

void MixerAdaptor::announceChanges() {
  const QVariantMap now = propertiesToBus(service_.state());
  QVariantMap changes;
  for (auto property = now.begin(); property != now.end(); ++property) {
    if (announced_.value(property.key()) != property.value()) {
      changes.insert(property.key(), property.value());
    }
  }
  if (changes.isEmpty()) {
    return;
  }
  announced_ = now;
  auto signal =
      QDBusMessage::createSignal(mixerObjectPath, propertiesInterface, "PropertiesChanged");
  signal << mixerInterface << changes << QStringList();
  bus_.send(signal);
}

MixerAdaptor::Answer MixerAdaptor::watchLevels(const QString& client, bool wanted) {
  if (!wanted) {
    endWatch(client);
    return QVariantList();
  }
  if (!watchers_.contains(client)) {
    watchers_.insert(client);
    watcherEnds_.addWatchedService(client);
  }
  if (!levels_) {
    levels_ = service_.watchLevels(
        [this](const std::vector<LevelReport>& levels) { sendLevels(levels); });
  }
  return QVariantList();
}

void MixerAdaptor::endWatch(const QString& client) {
  if (watchers_.remove(client)) {
    watcherEnds_.removeWatchedService(client);
  }
  if (watchers_.isEmpty()) {
    levels_.reset();
  }
}

void MixerAdaptor::sendLevels(const std::vector<LevelReport>& levels) {
  // To the watchers alone: nobody else is woken up by them.
  const QVariant value = QVariant::fromValue(toBus(levels));
  for (const QString& client : std::as_const(watchers_)) {
    auto signal =
        QDBusMessage::createTargetedSignal(client, mixerObjectPath, mixerInterface, "Levels");
    signal << value;
    bus_.send(signal);
  }
}

}  // namespace plemora
