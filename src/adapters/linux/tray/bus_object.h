#pragma once

#include <QDBusConnection>
#include <QDBusVirtualObject>
#include <QString>
#include <QVariant>
#include <functional>
#include <map>

namespace plemora {

/// An object of the bus with one interface of its own beside the standard ones. Calls that do not
/// fit the interface are answered with errors here. Main thread.
class BusObject : public QDBusVirtualObject {
 public:
  struct Method {
    QString signature;
    /// Gets arguments of that signature and returns the results.
    std::function<QVariantList(const QVariantList& arguments)> call;
  };

  /// What the object is called and how it describes itself.
  struct Name {
    QString path;
    QString interface;
    QString introspection;  ///< XML of the interface
  };

  BusObject(QDBusConnection bus, Name name);
  /// Takes the object off the bus.
  ~BusObject() override;

  /// Whether it could be put on the bus.
  bool isOnBus() const { return isOnBus_; }

  QString introspect(const QString& path) const override;
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

 protected:
  virtual QVariantMap properties() const = 0;

  void offer(const QString& name, Method method) { methods_[name] = std::move(method); }
  void send(const QString& signal, const QVariantList& arguments = {});
  const QDBusConnection& bus() const { return bus_; }

 private:
  QDBusMessage answer(const QDBusMessage& message) const;
  QDBusMessage answerProperties(const QDBusMessage& message) const;

  QDBusConnection bus_;
  Name name_;
  bool isOnBus_;
  std::map<QString, Method> methods_;
};

}  // namespace plemora
