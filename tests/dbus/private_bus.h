#pragma once

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDeadlineTimer>
#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <stdexcept>

namespace plemora {

/// A message bus of the test's own, with connections to it. Its folder also serves as
/// XDG_RUNTIME_DIR and home of the programs that the test starts.
class PrivateBus {
 public:
  PrivateBus() {
    QFile config(path("bus.conf"));
    if (!config.open(QIODevice::WriteOnly)) {
      throw std::runtime_error("cannot write " + config.fileName().toStdString());
    }
    config.write("<busconfig><type>session</type><auth>EXTERNAL</auth><listen>unix:path=" +
                 path("bus").toUtf8() +
                 "</listen><policy context=\"default\"><allow send_destination=\"*\"/>"
                 "<allow receive_sender=\"*\"/><allow own=\"*\"/></policy></busconfig>");
    config.close();
    daemon_.start("dbus-daemon", {"--config-file=" + config.fileName(), "--nofork", "--nopidfile",
                                  "--print-address"});
    if (!daemon_.waitForReadyRead(10000)) {
      throw std::runtime_error("dbus-daemon does not start: " +
                               daemon_.readAllStandardError().toStdString());
    }
    address_ = QString::fromLocal8Bit(daemon_.readLine()).trimmed();
  }

  ~PrivateBus() {
    for (const QString& name : connections_) {
      QDBusConnection::disconnectFromBus(name);
    }
    stop();
  }

  void stop() {
    daemon_.kill();
    daemon_.waitForFinished();
  }

  /// A connection of that name, to be dropped with close() or with the bus.
  QDBusConnection connection(const QString& name) {
    connections_ << name;
    return QDBusConnection::connectToBus(address_, name);
  }
  void close(const QString& name) {
    connections_.removeAll(name);
    QDBusConnection::disconnectFromBus(name);
  }

  QString path(const QString& file) const { return folder_.filePath(file); }

  /// What programs need to find this bus and nothing of the user's.
  QProcessEnvironment environment() const {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("DBUS_SESSION_BUS_ADDRESS", address_);
    environment.insert("XDG_RUNTIME_DIR", folder_.path());
    environment.insert("XDG_CONFIG_HOME", path("config"));
    environment.insert("HOME", folder_.path());
    environment.insert("LC_ALL", "C.UTF-8");
    for (const char* name : {"PIPEWIRE_RUNTIME_DIR", "PIPEWIRE_REMOTE", "NO_COLOR", "DISPLAY"}) {
      environment.remove(name);
    }
    return environment;
  }

 private:
  QTemporaryDir folder_;
  QProcess daemon_;
  QString address_;
  QStringList connections_;
};

/// Runs the Qt loop until the condition holds; false when it does not within ten seconds. The
/// step is done after every turn of the loop.
template <typename Condition, typename Step>
bool runUntil(Condition condition, Step step, int milliseconds = 10000) {
  const QDeadlineTimer deadline(milliseconds);
  step();
  while (!condition()) {
    if (deadline.hasExpired()) {
      return false;
    }
    QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 50);
    step();
  }
  return true;
}

}  // namespace plemora
