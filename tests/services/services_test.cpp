#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "adapters/stage/memory_defaults.h"
#include "adapters/stage/scripted_application.h"
#include "adapters/stage/scripted_login_item.h"
#include "adapters/stage/scripted_system_info.h"
#include "adapters/stage/scripted_update_service.h"
#include "adapters/stage/virtual_clock.h"
#include "adapters/stage/virtual_main_queue.h"
#include "app/services/dock_presence.h"
#include "app/services/launch_at_login.h"
#include "app/services/updater.h"
#include "support/log_keeper.h"

namespace plemora {
namespace {

using testing::IsEmpty;

TEST(LaunchAtLoginTest, RegistersInstalledCopiesOnly) {
  struct Case {
    std::string path;
    bool onMac;
    bool onLinux;
  };
  for (const Case& each : std::vector<Case>{
           {"/Applications/Plemora.app", true, false},
           {"/ApplicationsOld/Plemora.app", false, false},
           {"/Users/ann/Applications/Plemora.app", false, false},
           {"/Users/ann/Downloads/Plemora.app", false, false},
           {"/usr/bin/plemora", false, true},
           {"/usr/local/bin/plemora", false, true},
           {"/opt/plemora/bin/plemora", false, true},
           {"/home/ann/plemora/build/plemora", false, false},
           {"/usrlocal/plemora", false, false},
           {"", false, false},
       }) {
    ScriptedSystemInfo system;
    system.path = each.path;
    for (const bool onLinux : {false, true}) {
      MemoryDefaults defaults;
      ScriptedLoginItem item;
      if (onLinux) {
        LaunchAtLogin(defaults, system, item, {"/usr/", "/opt/"}).enableOnFirstRun();
      } else {
        LaunchAtLogin(defaults, system, item).enableOnFirstRun();
      }
      const bool expected = onLinux ? each.onLinux : each.onMac;
      EXPECT_EQ(item.attempts, expected ? 1 : 0) << each.path;
      EXPECT_EQ(defaults.boolean("didRegisterLoginItem").value_or(false), expected) << each.path;
    }
  }
}

TEST(LaunchAtLoginTest, TriesAgainUntilItHasWorkedOnce) {
  MemoryDefaults defaults;
  ScriptedSystemInfo system;
  ScriptedLoginItem item;
  LogKeeper log;
  item.failure = "Operation not permitted";
  LaunchAtLogin(defaults, system, item).enableOnFirstRun();
  EXPECT_EQ(defaults.boolean("didRegisterLoginItem"), std::nullopt);
  EXPECT_EQ(log.messages(LogLevel::error).size(), 1U);

  item.failure.reset();
  for (int start = 0; start < 3; ++start) {
    LaunchAtLogin(defaults, system, item).enableOnFirstRun();
  }
  EXPECT_EQ(item.attempts, 2);
  EXPECT_EQ(defaults.boolean("didRegisterLoginItem"), true);
  EXPECT_EQ(log.records.size(), 1U);
}

TEST(UpdaterTest, FailuresAreLoggedAndSurvived) {
  ScriptedUpdateService service;
  LogKeeper log;
  Updater updater(service);
  EXPECT_EQ(service.starts, 0);
  updater.start();
  EXPECT_EQ(service.starts, 1);
  EXPECT_THAT(log.records, IsEmpty());

  service.failure = "no feed";
  updater.start();
  EXPECT_EQ(log.messages(LogLevel::error).size(), 1U);
  updater.controller().checkForUpdates();
  EXPECT_EQ(service.checks, 1);
}

class DockPresenceTest : public testing::Test {
 protected:
  VirtualClock clock;
  VirtualMainQueue queue{clock};
  ScriptedApplication application;
  DockPresence dock{application, queue};
};

TEST_F(DockPresenceTest, TheIconGoesWithTheLastWindowThatNeedsIt) {
  struct Case {
    std::vector<ApplicationWindow> windows;
    bool keepsIcon;
  };
  for (const Case& each : std::vector<Case>{
           {{}, false},
           {{{"dock-window", true}}, true},
           {{{"dock-window", false}}, false},
           {{{"panel", true}}, false},
           {{{"panel", true}, {"dock-window", false}, {"dock-window", true}}, true},
       }) {
    application.policy = ActivationPolicy::regular;
    application.openWindows = each.windows;
    dock.update();
    queue.advance(0.5);
    EXPECT_EQ(application.policy == ActivationPolicy::regular, each.keepsIcon);
  }
}

TEST_F(DockPresenceTest, LooksALittleLater) {
  application.policy = ActivationPolicy::regular;
  application.openWindows = {{"dock-window", true}};
  dock.update();
  queue.advance(0.3);
  dock.update();
  application.openWindows.clear();
  EXPECT_EQ(application.policy, ActivationPolicy::regular);
  queue.advance(0.11);
  EXPECT_EQ(application.policy, ActivationPolicy::accessory);
  // A window that has come back meanwhile is seen by the second look.
  application.policy = ActivationPolicy::regular;
  application.openWindows = {{"dock-window", true}};
  queue.advance(0.5);
  EXPECT_EQ(application.policy, ActivationPolicy::regular);
  EXPECT_EQ(queue.pendingTimers(), 0);

  application.policyChanges = 0;
  application.policy = ActivationPolicy::accessory;
  application.openWindows.clear();
  dock.update();
  queue.advance(0.5);
  EXPECT_EQ(application.policyChanges, 0) << "what it is already is not set again";
}

TEST(DockPresenceLifeTest, NothingHappensOnceItIsGone) {
  VirtualClock clock;
  VirtualMainQueue queue(clock);
  ScriptedApplication application;
  application.policy = ActivationPolicy::regular;
  {
    DockPresence dock(application, queue);
    dock.update();
  }
  queue.advance(1);
  EXPECT_EQ(application.policyChanges, 0);
}

}  // namespace
}  // namespace plemora
