// From the first launch on an empty home to the panel, and what ends or interrupts that.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "panel/desk.h"
#include "support/wait.h"

namespace plemora::rig {
namespace {

constexpr unsigned spaceKey = ' ';
constexpr unsigned returnKey = 0xff0d;

class SetupOnDesk : public testing::Test {
 protected:
  explicit SetupOnDesk(TrayHost host = TrayHost::lxqtPanel)
      : desk({.name = "First", .host = host, .isFirstStart = true}) {}
  ~SetupOnDesk() override {
    if (HasFailure()) {
      std::printf("%s", desk.session().logs().c_str());
    }
  }

  bool isSetting(const char* key) {
    return eventually(5, [&] {
      const auto all = nlohmann::json::parse(desk.settings(), nullptr, false);
      return all.is_object() && all.value(key, false);
    });
  }
  bool startsAtLogin() {
    return std::filesystem::exists(desk.session().directory() +
                                   "/config/autostart/com.quorvane.mixer.desktop");
  }
  /// Ends the program as log-out does; the seconds that this took.
  double endIn(int signal) {
    const auto before = std::chrono::steady_clock::now();
    desk.plemora().process().signal(signal);
    EXPECT_TRUE(desk.plemora().process().wait(10)) << "it does not end";
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - before).count();
  }

  Desk desk;
};

TEST_F(SetupOnDesk, LeadsToThePanelByPointer) {
  desk.startProgram();
  desk.click(desk.control("Turn On: Start at login").frame);
  desk.click(desk.control("Show Me").frame);
  EXPECT_TRUE(desk.restsUnderIcon(313));
  EXPECT_TRUE(isSetting("didCompleteSetup"));
  EXPECT_TRUE(startsAtLogin());

  EXPECT_LT(endIn(SIGTERM), 2);
  desk.startProgram();
  EXPECT_TRUE(desk.showsIcon());
  EXPECT_TRUE(desk.showsNothing()) << "setup comes once";
}

TEST_F(SetupOnDesk, LeadsToThePanelByKeys) {
  desk.startProgram();
  ASSERT_TRUE(desk.shows("Not Now"));
  ASSERT_TRUE(desk.tabTo("Not Now"));
  desk.display().pressKey(spaceKey);
  ASSERT_TRUE(desk.tabTo("Show Me"));
  desk.display().pressKey(returnKey);
  EXPECT_TRUE(desk.restsUnderIcon(313));
  EXPECT_TRUE(isSetting("didCompleteSetup"));
  EXPECT_FALSE(startsAtLogin());
}

TEST_F(SetupOnDesk, IsReadOutAndPressedByAScreenReader) {
  desk.startProgram();
  const struct {
    const char* name;
    const char* role;
    const char* description;  ///< its beginning
  } cases[] = {
      {"Set Up Plemora", "frame", ""},
      {"Set Up Plemora", "heading", ""},
      {"Allow audio access", "panel", "Done. Lets Plemora turn each app"},
      {"Start at login", "panel", "Ready. Keeps every app at its volume"},
      {"Turn On: Start at login", "push button", ""},
      {"Not Now", "push button", ""},
      {"Finish Later", "push button", ""},
  };
  for (const auto& one : cases) {
    EXPECT_THAT(desk.control(one.name, one.role).description, testing::StartsWith(one.description));
  }
  const QRect window = desk.control("Set Up Plemora", "frame").frame;
  for (const Control& control : desk.controls()) {
    EXPECT_TRUE(!control.is("showing") || window.contains(control.frame)) << control.name;
    EXPECT_FALSE(control.is("showing") && control.role == "push button" && control.name.empty());
  }

  EXPECT_TRUE(desk.act("Press", "Turn On: Start at login"));
  EXPECT_TRUE(desk.shows("You're all set"));
  EXPECT_TRUE(startsAtLogin());
  EXPECT_TRUE(isSetting("didCompleteSetup"));
  EXPECT_TRUE(desk.act("Press", "Show Me"));
  EXPECT_TRUE(desk.restsUnderIcon(313));
}

TEST_F(SetupOnDesk, LeavesOtherWaysInOpenAndComesBackUntilItIsDone) {
  desk.startProgram();
  ASSERT_TRUE(desk.shows("Finish Later"));
  EXPECT_FALSE(desk.panel());
  EXPECT_EQ(desk.startAgain({"--setup", "--open"}), 0);
  EXPECT_FALSE(desk.panel()) << "setup goes before the panel";
  EXPECT_EQ(desk.startAgain(), 0);
  EXPECT_TRUE(desk.opens()) << "a second start";
  EXPECT_EQ(desk.startAgain({"--setup"}), 0);
  EXPECT_TRUE(desk.closes());
  EXPECT_EQ(desk.startAgain({"com.quorvane.mixer://panel"}), 0);
  EXPECT_TRUE(desk.opens()) << "a link";
  EXPECT_EQ(desk.startAgain({"--setup"}), 0);
  desk.click(desk.control("Finish Later").frame);
  EXPECT_TRUE(desk.showsNothing());
  EXPECT_EQ(desk.startAgain({"--setup"}), 0);
  const QRect inFrame = desk.control("Set Up Plemora", "frame").frame;
  desk.display().click({inFrame.right() - 9, inFrame.top() - 9});
  EXPECT_TRUE(desk.showsNothing()) << "by the button of the window's frame";

  EXPECT_LT(endIn(SIGHUP), 2);
  desk.startProgram();
  EXPECT_TRUE(desk.shows("Finish Later")) << "at the next start";
  EXPECT_THAT(desk.settings(), testing::Not(testing::HasSubstr("didCompleteSetup")));
}

TEST_F(SetupOnDesk, EndsInTimeAndLeavesEveryAppAsItWas) {
  SinkRecorder first(desk.session(), "first");
  desk.startProgram();
  const auto tone = desk.play("tone", Signal::constant(0.5));
  desk.plemora().must({"mute", "tone"});
  ASSERT_TRUE(hears(first, 0));
  ASSERT_TRUE(desk.shows("Finish Later"));
  EXPECT_LT(endIn(SIGTERM), 2) << "in order, with setup open";
  EXPECT_TRUE(hears(first, 0.5));

  desk.startProgram();
  ASSERT_TRUE(hears(first, 0));
  // A server that does not answer holds up whoever wants to take leave of it.
  desk.session().process(Daemon::pipeWire).signal(SIGSTOP);
  EXPECT_LT(endIn(SIGINT), 3) << "by force if need be";
  desk.session().process(Daemon::pipeWire).signal(SIGCONT);
  EXPECT_TRUE(hears(first, 0.5));
}

TEST_F(SetupOnDesk, SurvivesBeingKilledAtAnyMoment) {
  const auto isWhole = [&] {
    return desk.settings().empty() || nlohmann::json::accept(desk.settings());
  };
  // From before it can have read its arguments to after its window stands there.
  for (const double moment : {0.001, 0.01, 0.03, 0.06, 0.12, 0.25, 0.5}) {
    desk.startAndKill(moment);
    EXPECT_TRUE(isWhole()) << desk.settings();
  }
  // While it writes that setup is done, as far as that can be met.
  for (int round = 0; round < 4; ++round) {
    desk.startProgram();
    if (!desk.shows("Not Now")) {
      break;
    }
    desk.click(desk.control("Not Now").frame);
    desk.plemora().process().wait(round * 0.003);
    desk.plemora().process().kill();
    EXPECT_TRUE(isWhole()) << desk.settings();
  }
  desk.plemora().process().kill();
  desk.startProgram();
  EXPECT_EQ(desk.startAgain({"--setup"}), 0);
  EXPECT_TRUE(desk.shows("Show Me") || desk.shows("Not Now")) << "the next start is right";
}

class SetupWithoutTray : public SetupOnDesk {
 protected:
  SetupWithoutTray() : SetupOnDesk(TrayHost::none) {}
};

TEST_F(SetupWithoutTray, SaysWhatToDoThere) {
  desk.startProgram();
  desk.click(desk.control("Not Now").frame);
  desk.click(desk.control("Got It: Find Plemora without a tray").frame);
  desk.click(desk.control("Show Me").frame);
  EXPECT_TRUE(desk.opens());
  EXPECT_TRUE(isSetting("didCompleteSetup"));
}

}  // namespace
}  // namespace plemora::rig
