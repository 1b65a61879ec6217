#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QVariantList>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "adapters/linux/dbus/mixer_state.h"

namespace plemora {

/// Why a client got no answer. The message is for the user.
class ClientError : public std::runtime_error {
 public:
  enum class Kind {
    noSessionBus,
    notRunning,
    refused,  ///< the mixer answered with an error of its own
    failed,   ///< it gave no usable answer
  };

  ClientError(Kind why, const std::string& message) : std::runtime_error(message), kind(why) {}

  const Kind kind;
};

/// The mixer as seen from another program, over the session bus. Never starts the mixer. Calls
/// block until the answer is there and throw ClientError. Needs a QCoreApplication; one thread.
class MixerClient : public QObject {
  Q_OBJECT

 public:
  explicit MixerClient(QDBusConnection bus = QDBusConnection::sessionBus());

  /// All properties.
  MixerState state();

  /// Calls a method of the interface and returns its results.
  QVariantList call(const char* method, const QVariantList& arguments = {});

  AudibilityReport explain(const std::string& id);

  struct Handlers {
    /// After each change, with all properties.
    std::function<void(const MixerState&)> changed;
    /// About ten times a second; empty when no levels are wanted.
    std::function<void(const std::vector<LevelReport>&)> levels;
    /// The mixer has left the bus, or the bus is gone.
    std::function<void()> ended;
  };

  /// Tells the handlers of everything that happens from now on, and returns how things stand.
  MixerState watch(Handlers handlers);

 private Q_SLOTS:
  void onPropertiesChanged(const QDBusMessage& message);
  void onLevels(const QDBusMessage& message);
  void onEnded();

 private:
  QVariantList call(const char* interface, const char* method, const QVariantList& arguments);

  QDBusConnection bus_;
  MixerState watched_;
  Handlers handlers_;
};

}  // namespace plemora
