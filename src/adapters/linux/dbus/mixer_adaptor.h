#pragma once

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QDBusVirtualObject>
#include <QSet>
#include <functional>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "adapters/linux/dbus/mixer_service.h"

namespace plemora {

/// The mixer as an object of the session bus: translates between messages and MixerService, tells
/// of changed properties, and sends level reports to those who watch. Main thread.
class MixerAdaptor : public QDBusVirtualObject {
 public:
  /// What a method answers: its results, or an error.
  using Answer = std::variant<QVariantList, ServiceError>;

  /// The service must outlive it.
  MixerAdaptor(QDBusConnection bus, MixerService& service);
  ~MixerAdaptor() override;

  /// Puts the object on the bus. False when another object stands there.
  bool registerObject();

  /// Called with the arguments of another start of the program, and when a client asks to end it.
  void setActivateHandler(std::function<void(const std::vector<std::string>&)> handler);
  void setQuitHandler(std::function<void()> handler);
  /// Called with the environment of a user's desktop ("NAME=value" each) on which the mixer is
  /// wanted. Returns whether it stood on one already. Without a handler it never does.
  void setJoinHandler(std::function<bool(const std::vector<std::string>&)> handler);

  QString introspect(const QString& path) const override;
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

 private:
  struct Method;
  static const std::vector<Method>& methods();
  static const Method* findMethod(const QString& name);

  Answer call(const QDBusMessage& message);
  Answer callProperties(const QDBusMessage& message) const;
  Answer watchLevels(const QString& client, bool wanted);
  void endWatch(const QString& client);
  void sendLevels(const std::vector<LevelReport>& levels);
  void announceChanges();

  QDBusConnection bus_;
  MixerService& service_;
  QVariantMap announced_;  // property values that clients know
  std::function<void(const std::vector<std::string>&)> activate_;
  std::function<void()> quit_;
  std::function<bool(const std::vector<std::string>&)> join_;
  QSet<QString> watchers_;  // unique names
  QDBusServiceWatcher watcherEnds_;
  std::shared_ptr<void> levels_;  // only while there are watchers
};

}  // namespace plemora
