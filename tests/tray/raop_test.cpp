#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWindow>

#include "adapters/linux/tray/pop_up_window.h"
#include "adapters/linux/tray/raop_route_picker.h"
#include "adapters/stage/scripted_system_info.h"
#include "adapters/stage/simulated_hal.h"
#include "adapters/stage/virtual_clock.h"
#include "adapters/stage/virtual_main_queue.h"
#include "dbus/private_bus.h"

namespace plemora {
namespace {

using testing::ElementsAre;

/// The menu on the screen; null while there is none.
PopUpWindow* shownMenu() {
  for (QWindow* window : QGuiApplication::allWindows()) {
    if (auto* menu = dynamic_cast<PopUpWindow*>(window); menu && menu->isVisible()) {
      return menu;
    }
  }
  return nullptr;
}

std::vector<std::string> titles() {
  std::vector<std::string> titles;
  if (const PopUpWindow* menu = shownMenu()) {
    for (const PopUpMenuItem& item : menu->items()) {
      titles.push_back((item.isChecked ? "*" : "") + item.title);
    }
  }
  return titles;
}

void press(Qt::Key key) {
  QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
  QGuiApplication::sendEvent(shownMenu(), &event);
}

void click(QPointF point) {
  PopUpWindow* menu = shownMenu();
  for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
    QMouseEvent event(type, point, menu->position() + point, Qt::LeftButton, Qt::LeftButton,
                      Qt::NoModifier);
    QGuiApplication::sendEvent(menu, &event);
  }
}

bool settle(const std::function<bool()>& condition) {
  return runUntil(condition, [] {});
}

class RaopTest : public testing::Test {
 protected:
  AudioObjectID add(const std::string& name, FourCharCode transport) {
    const auto id = hal.addDevice({.uid = name + "-uid", .name = name, .transport = transport});
    main.drain();
    return id;
  }
  void present() {
    picker.present({400, 400, 20, 20}, [this] { ++ended; });
  }
  bool waitForEnd(int count) {
    return settle([&] { return ended == count; });
  }

  VirtualClock clock;
  VirtualMainQueue main{clock};
  SimulatedHal hal{main};
  ScriptedSystemInfo system;
  const AudioObjectID speakers = hal.addDevice(
      {.uid = "speakers", .name = "Speakers", .transport = kAudioDeviceTransportTypeBuiltIn});
  OutputDevices devices{hal, system};
  std::weak_ptr<int> search;
  bool canSearch = true;
  RaopRoutePicker picker{main, devices, [this]() -> std::shared_ptr<void> {
                           const auto made = canSearch ? std::make_shared<int>(0) : nullptr;
                           search = made;
                           return made;
                         }};
  int ended = 0;
};

TEST_F(RaopTest, SaysWhenNoneIsFoundAndKeepsNothingRunning) {
  present();
  EXPECT_FALSE(search.expired());
  EXPECT_THAT(titles(), ElementsAre("Looking for AirPlay receivers…"));
  main.advance(10);
  EXPECT_THAT(titles(), ElementsAre("No AirPlay receivers found"));
  press(Qt::Key_Return);  // nothing can be chosen
  EXPECT_NE(shownMenu(), nullptr);
  press(Qt::Key_Escape);
  ASSERT_TRUE(waitForEnd(1));
  EXPECT_TRUE(search.expired());
  EXPECT_EQ(main.pendingTimers(), 0);

  canSearch = false;
  present();
  main.advance(0);
  EXPECT_THAT(titles(), ElementsAre("No AirPlay receivers found"));
  click({-20, -20});
  ASSERT_TRUE(waitForEnd(2)) << "a click elsewhere closes it";
}

TEST_F(RaopTest, AReceiverInUseKeepsTheSearchAndNothingElseDoes) {
  present();
  const auto kitchen = add("Kitchen", kAudioDeviceTransportTypeAirPlay);
  const auto hall = add("Hall", kAudioDeviceTransportTypeAirPlay);
  EXPECT_THAT(titles(), ElementsAre("Kitchen", "Hall"));
  press(Qt::Key_Down);
  press(Qt::Key_Return);
  ASSERT_TRUE(waitForEnd(1));
  main.drain();
  EXPECT_EQ(devices.defaultDeviceID.get(), kitchen);
  EXPECT_FALSE(search.expired()) << "the receiver would go with it";

  present();
  EXPECT_THAT(titles(), ElementsAre("*Kitchen", "Hall"));
  click({60, 5 + 24 + 12});
  ASSERT_TRUE(waitForEnd(2));
  main.drain();
  EXPECT_EQ(devices.defaultDeviceID.get(), hall);
  EXPECT_FALSE(search.expired());

  for (const OutputDevice& device : devices.devices.get()) {
    if (device.id == speakers) {
      devices.choose(device);
      break;
    }
  }
  main.drain();
  EXPECT_TRUE(search.expired()) << "nobody uses a receiver any more";
}

TEST_F(RaopTest, AReceiverThatGoesWhileTheMenuIsOpenGoesFromIt) {
  const auto kitchen = add("Kitchen", kAudioDeviceTransportTypeAirPlay);
  present();
  EXPECT_THAT(titles(), ElementsAre("Kitchen"));
  hal.removeDevice(kitchen);
  main.drain();
  main.advance(10);
  EXPECT_THAT(titles(), ElementsAre("No AirPlay receivers found"));
  present();  // asked for again while it is open
  EXPECT_EQ(ended, 1);
  press(Qt::Key_Escape);
  EXPECT_TRUE(waitForEnd(2));
}

}  // namespace
}  // namespace plemora
