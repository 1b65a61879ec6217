#pragma once

#include <gtest/gtest.h>

#include <QDBusMessage>
#include <QDBusPendingCall>
#include <string>
#include <vector>

#include "adapters/linux/dbus/mixer_adaptor.h"
#include "adapters/linux/dbus/mixer_names.h"
#include "audio/audio_world.h"
#include "dbus/private_bus.h"

namespace plemora {

/// What a run of a program left.
struct Outcome {
  int status = -1;
  std::string out;
  std::string err;
};

/// The mixer on the simulated desktop, on a bus of its own. Time stands still unless a test lets
/// it pass.
class MixerOnBus : public testing::Test {
 protected:
  MixerOnBus() {
    world.play(100, "org.mozilla.firefox", "Firefox", world.speakers);
    world.play(101, "mpv", "mpv Media Player", world.speakers);
    world.play(102, "com.example.one", "Player", world.speakers, false);
    world.play(103, "com.example.two", "Player", world.speakers);
    world.start();
    service.emplace(world.main, *world.mixer, "1.2.3");
    service->setConnected(true);
    adaptor.emplace(mixerConnection, *service);
    EXPECT_TRUE(adaptor->registerObject());
    EXPECT_TRUE(mixerConnection.registerService(mixerBusName));
    world.settle();
  }

  ~MixerOnBus() override {
    adaptor.reset();
    service.reset();
  }

  template <typename Condition>
  bool until(Condition condition) {
    return runUntil(condition, [this] { world.settle(); });
  }

  /// A call from another connection, with the mixer answering meanwhile.
  QDBusMessage ask(const char* interface, const QString& method,
                   const QVariantList& arguments = {}) {
    auto message = QDBusMessage::createMethodCall(mixerBusName, mixerObjectPath, interface, method);
    message.setArguments(arguments);
    const QDBusPendingCall call = clientConnection.asyncCall(message);
    EXPECT_TRUE(until([&] { return call.isFinished(); })) << method.toStdString();
    return call.reply();
  }

  /// Runs plemoractl against the mixer.
  Outcome ctl(const QStringList& arguments, const QProcessEnvironment& environment) {
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(PLEMORACTL, arguments);
    EXPECT_TRUE(until([&] { return process.state() == QProcess::NotRunning; }));
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            process.readAllStandardOutput().toStdString(),
            process.readAllStandardError().toStdString()};
  }
  Outcome ctl(const QStringList& arguments) { return ctl(arguments, bus.environment()); }

  int argumentCount = 1;
  char programName[5] = "test";
  char* argumentValues[2] = {programName, nullptr};
  QCoreApplication application{argumentCount, argumentValues};
  PrivateBus bus;
  QDBusConnection mixerConnection = bus.connection("mixer");
  QDBusConnection clientConnection = bus.connection("client");
  AudioWorld world;
  std::optional<MixerService> service;
  std::optional<MixerAdaptor> adaptor;
};

}  // namespace plemora
