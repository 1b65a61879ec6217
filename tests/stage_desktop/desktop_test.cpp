#include <cmath>

#include "adapters/stage/desktop/stage_outputs.h"
#include "stage_desktop/desk.h"

namespace plemora {

namespace {

using testing::DoubleNear;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

class Desktop : public Desk {
 protected:
  std::vector<std::string> dockNames() {
    std::vector<std::string> names;
    for (const auto& application : desktop->dock.icons()) {
      names.push_back(application.localizedName.value_or(""));
    }
    return names;
  }

  Point rowOf(const std::string& title) {
    const auto rows = desktop->settings.rows();
    for (std::size_t index = 0; index < rows.size(); ++index) {
      if (rows[index].title == title) {
        return middle(desktop->settings.rowFrame(index));
      }
    }
    ADD_FAILURE() << title;
    return {};
  }
};

TEST_F(Desktop, RunsTimersFramesAndOtherQueuesInTheirOrder) {
  std::vector<std::string> seen;
  const auto queue = desktop->queues.makeQueue("work");
  const Timer late = desktop->mainQueue.after(0.3, [&] { seen.push_back("late"); });
  const Timer early = desktop->mainQueue.after(0.1, [&] {
    seen.push_back("early");
    queue->async([&] {
      seen.push_back("work");
      desktop->mainQueue.async([&] { seen.push_back("back"); });
    });
  });
  int frames = 0;
  const auto link = desktop->displayLinks.makeLink(1, [&] { ++frames; });
  desktop->advance(0.5);
  EXPECT_THAT(seen, ElementsAre("early", "work", "back", "late"));
  EXPECT_THAT(frames, testing::AllOf(testing::Ge(29), testing::Le(30)));
  EXPECT_THAT(desktop->clock.mediaTime(), DoubleNear(0.5, 1e-9));
}

TEST_F(Desktop, SystemSettingsOpensAtThePaneOfALink) {
  struct Case {
    const char* link;
    StageSettings::Pane pane;
  };
  using Pane = StageSettings::Pane;
  for (const auto& [link, pane] :
       {Case{"com.apple.preference.security?Privacy_ScreenCapture", Pane::audioCapture},
        Case{"com.apple.preference.security?Privacy_Accessibility", Pane::accessibility},
        Case{"com.apple.ControlCenter-Settings.extension", Pane::menuBar},
        Case{"com.apple.Sound-Settings.extension", Pane::sound},
        Case{"com.example.nobody", Pane::general}}) {
    EXPECT_TRUE(desktop->workspace.openURL(std::string("x-apple.systempreferences:") + link));
    EXPECT_EQ(desktop->settings.pane(), pane) << link;
  }
  EXPECT_FALSE(desktop->workspace.openURL("nobody:knows"));
  const auto pid = desktop->settings.pid();
  EXPECT_EQ(desktop->workspace.runningApplication(pid)->bundleID, "com.apple.systempreferences");
  EXPECT_EQ(desktop->workspace.frontmost().get(), pid);
  EXPECT_THAT(dockNames(), ElementsAre("System Settings"));

  ASSERT_EQ(windowsOf(StageWindowKind::settings).size(), 1U);
  const Rect frame = desktop->settings.frame();
  const Point title{frame.midX(), frame.maxY() - 20};
  desktop->drag(title, {title.x + 30, title.y - 50});
  EXPECT_EQ(desktop->settings.frame(), frame.offset(30, -50));
  EXPECT_EQ(windowsOf(StageWindowKind::settings)[0].bounds,
            desktop->space.flipped(frame.offset(30, -50)));
  desktop->click(middle(desktop->settings.closeButton()));
  EXPECT_FALSE(desktop->settings.isOpen());
  EXPECT_FALSE(desktop->workspace.runningApplication(pid));
  EXPECT_THAT(windowsOf(StageWindowKind::settings), IsEmpty());
  EXPECT_EQ(desktop->workspace.frontmost().get(), -1);
  desktop->settings.show(Pane::sound);
  desktop->workspace.forceTerminate(desktop->settings.pid());
  EXPECT_FALSE(desktop->settings.isOpen());
}

TEST_F(Desktop, TheSwitchesOfSystemSettingsChangeTheWorld) {
  using Pane = StageSettings::Pane;
  std::vector<bool> answers;
  desktop->consent.setPreflight(2);
  desktop->consent.request("service", [&](bool granted) { answers.push_back(granted); });
  desktop->settings.show(Pane::audioCapture);
  desktop->click(rowOf("Program"));
  EXPECT_EQ(desktop->consent.answer(), 0);
  desktop->click(rowOf("Program"));
  EXPECT_EQ(desktop->consent.answer(), 1);
  EXPECT_THAT(answers, ElementsAre(true));

  desktop->settings.show(Pane::accessibility);
  desktop->click(rowOf("Program"));
  EXPECT_FALSE(desktop->accessibility.isTrusted());
  desktop->click(rowOf("Program"));
  EXPECT_TRUE(desktop->accessibility.isTrusted());

  desktop->settings.show(Pane::menuBar);
  desktop->click(rowOf("Sound"));
  EXPECT_EQ(desktop->menuBar.extra("com.apple.menuextra.sound"), nullptr);
  EXPECT_EQ(programPreferences.appValue("NSStatusItem VisibleCC Sound", controlsDomain),
            PreferenceValue(false));
  desktop->click(rowOf("Sound"));
  EXPECT_NE(desktop->menuBar.extra("com.apple.menuextra.sound"), nullptr);

  desktop->plug({.uid = "a", .name = "Speakers"});
  const auto headphones = desktop->plug({.uid = "b", .name = "Headphones"});
  desktop->plug({.uid = "c", .name = "Hidden", .isHidden = true});
  desktop->settings.show(Pane::sound);
  EXPECT_EQ(desktop->settings.rows().size(), 2U);
  desktop->click(rowOf("Headphones"));
  EXPECT_EQ(desktop->hal.defaultOutput(), headphones);
  EXPECT_FALSE(desktop->settings.setRow("Nothing", true));
}

TEST_F(Desktop, AsksTheUserForConsentInAPrompt) {
  std::vector<bool> answers;
  const auto ask = [&] {
    desktop->consent.request("service", [&](bool granted) { answers.push_back(granted); });
  };
  EXPECT_THAT(windowsOf(StageWindowKind::prompt), IsEmpty());
  ask();
  ASSERT_EQ(windowsOf(StageWindowKind::prompt).size(), 1U);
  desktop->click({desktop->prompt.frame().midX(), desktop->prompt.frame().maxY() - 5});
  EXPECT_TRUE(desktop->prompt.isOpen());
  desktop->click(middle(desktop->prompt.allowButton()));
  EXPECT_FALSE(desktop->prompt.isOpen());
  ask();
  desktop->click(middle(desktop->prompt.denyButton()));
  EXPECT_THAT(answers, ElementsAre(true, false));
}

TEST_F(Desktop, TheDockShowsRegularApplicationsAndReopensTheProgram) {
  int reopened = 0;
  desktop->program.onReopen = [&] { ++reopened; };
  EXPECT_THAT(dockNames(), IsEmpty());
  desktop->program.setActivationPolicy(ActivationPolicy::regular);
  desktop->players.start("org.example.tunes", "Tunes");
  EXPECT_THAT(dockNames(), ElementsAre("Program", "Tunes"));
  desktop->click(middle(desktop->dock.iconFrame(1)));
  EXPECT_EQ(desktop->workspace.frontmost().get(), desktop->players.find("org.example.tunes")->pid);
  EXPECT_EQ(reopened, 0);
  desktop->click(middle(desktop->dock.iconFrame(0)));
  EXPECT_EQ(desktop->workspace.frontmost().get(), desktop->program.pid());
  EXPECT_EQ(reopened, 1);
  desktop->program.setActivationPolicy(ActivationPolicy::accessory);
  EXPECT_THAT(dockNames(), ElementsAre("Tunes"));
}

TEST_F(Desktop, PlayersSoundOnTheirDeviceUntilTheyPauseOrEnd) {
  const auto speakers = desktop->plug({.uid = "speakers"});
  const auto other = desktop->plug({.uid = "other"});
  const auto loudest = [&](AudioObjectID device) {
    desktop->advance(0.1);
    float most = 0;
    for (const auto& channel : desktop->hal.heard(device)) {
      for (const float sample : channel) {
        most = std::max(most, std::abs(sample));
      }
    }
    return most;
  };
  desktop->players.start("org.example.tunes", "Tunes", 440, 0.25F);
  EXPECT_THAT(loudest(speakers), testing::FloatNear(0.25F, 0.01F));
  EXPECT_EQ(loudest(other), 0);
  desktop->hal.setDefaultOutput(other);
  EXPECT_THAT(loudest(other), testing::FloatNear(0.25F, 0.01F)) << "it follows the default output";
  EXPECT_EQ(loudest(speakers), 0);
  desktop->players.start("org.example.film", "Film", 300, 0.5F, "speakers");
  EXPECT_THAT(loudest(speakers), testing::FloatNear(0.5F, 0.01F));
  EXPECT_TRUE(desktop->pull("speakers"));
  EXPECT_FALSE(desktop->pull("speakers"));
  EXPECT_GT(loudest(other), 0.5F) << "its device is gone";

  desktop->click(middle(StagePlayers::button(*desktop->players.find("org.example.film"))));
  EXPECT_FALSE(desktop->players.find("org.example.film")->isPlaying);
  EXPECT_THAT(loudest(other), testing::FloatNear(0.25F, 0.01F));
  desktop->click(middle(StagePlayers::button(*desktop->players.find("org.example.film"))));
  EXPECT_GT(loudest(other), 0.5F);

  const auto pid = desktop->players.find("org.example.tunes")->pid;
  EXPECT_TRUE(desktop->workspace.forceTerminate(pid));
  EXPECT_EQ(desktop->players.find("org.example.tunes"), nullptr);
  EXPECT_THAT(loudest(other), testing::FloatNear(0.5F, 0.01F));
  desktop->players.stop("org.example.film");
  EXPECT_THAT(windowsOf(StageWindowKind::player), IsEmpty());
  EXPECT_THAT(dockNames(), IsEmpty());
}

TEST_F(Desktop, WindowsOfAppsComeForwardWhenTheyArePressedAndAreDragged) {
  desktop->players.start("org.example.tunes", "Tunes");
  desktop->players.start("org.example.film", "Film");
  const auto front = [&] { return windowsOf(StageWindowKind::player)[0].ownerName; };
  EXPECT_EQ(front(), "Film");
  const Rect frame = desktop->players.find("org.example.tunes")->frame;
  const Point corner{frame.minX() + 5, frame.minY() + 5};
  desktop->drag(corner, {corner.x + 100, corner.y + 50});
  EXPECT_EQ(front(), "Tunes");
  EXPECT_EQ(desktop->players.find("org.example.tunes")->frame, frame.offset(100, 50));
  EXPECT_TRUE(desktop->players.find("org.example.tunes")->isPlaying);
}

TEST_F(Desktop, HasScreensThatComeAndGo) {
  openCenter();
  desktop->settings.show(StageSettings::Pane::sound);
  desktop->screens.set({StageDesktop::makeScreen(1, {0, 0, 1440, 900}, 2, true),
                        StageDesktop::makeScreen(2, {1440, 200, 800, 600}, 1, false)});
  const auto bars = windowsOf(StageWindowKind::menuBar);
  ASSERT_EQ(bars.size(), 2U);
  EXPECT_EQ(bars[0].bounds, (Rect{1440, 100, 800, 24}));
  EXPECT_EQ(bars[1].bounds, (Rect{0, 0, 1440, 24}));
  EXPECT_EQ(desktop->menuBar.extra("com.apple.menuextra.controlcenter")->frame.maxX(), 1440 - 182);

  // The other one becomes the main one: everything that hangs on it moves there.
  desktop->screens.set({StageDesktop::makeScreen(2, {0, 0, 800, 600}, 1, true)});
  EXPECT_EQ(desktop->menuBar.extra("com.apple.menuextra.controlcenter")->frame.maxX(), 800 - 182);
  EXPECT_EQ(windowsOf(StageWindowKind::controlCenter)[0].bounds->maxX(), 800 - 8);
  EXPECT_EQ(desktop->dock.frame().midX(), 400);

  desktop->screens.set({});
  EXPECT_THAT(desktop->windowServer.onScreenWindows(), IsEmpty());
  desktop->click({100, 100});
  desktop->advance(0.1);
  desktop->screens.set({StageDesktop::makeScreen(1, {0, 0, 1440, 900}, 2, true)});
  EXPECT_THAT(windowsOf(StageWindowKind::settings), Not(IsEmpty()));
}

TEST_F(Desktop, TheProgramIsAnApplicationThatStartsEndsAndIsKilled) {
  int killed = 0;
  desktop->program.onKilled = [&] { ++killed; };
  const auto first = desktop->program.pid();
  EXPECT_EQ(desktop->workspace.runningApplication(first)->localizedName, "Program");
  desktop->program.end();
  EXPECT_FALSE(desktop->program.isRunning());
  EXPECT_FALSE(desktop->workspace.runningApplication(first));
  desktop->program.start("org.example.program", "Program");
  EXPECT_NE(desktop->program.pid(), first);
  EXPECT_EQ(killed, 0);
  EXPECT_TRUE(desktop->workspace.forceTerminate(desktop->program.pid()));
  EXPECT_EQ(killed, 1);
  EXPECT_FALSE(desktop->program.isRunning());

  const auto window = showPanel({0, 0, 10, 10});
  EXPECT_EQ(desktop->program.windows().size(), 1U);
  EXPECT_TRUE(desktop->program.windows()[0].isVisible);
  EXPECT_EQ(desktop->program.windows()[0].identifier, "panel");
}

TEST_F(Desktop, WhatTheProgramHoldsMayOutliveIt) {
  addNewControl();
  openCenter();
  const auto panel = showPanel({100, 100, 50, 50});
  const auto item = desktop->menuBar.makeItem({}, {});
  const auto monitor = desktop->input.monitorGlobal(leftMouseDownMask, [](const InputEvent&) {});
  const auto link = desktop->displayLinks.makeLink(1, [] {});
  const Timer timer = desktop->mainQueue.after(1, [] {});
  const auto application = desktop->accessibility.application(center().pid());
  const auto windows = application->attribute("AXWindows");
  const auto queue = desktop->queues.makeQueue("work");
  desktop.reset();
  EXPECT_FALSE(item->frame());
  item->popUpMenu({{"Open", {}, {}}});
  item->setHighlighted(true);
  panel->order(WindowOrder::front);
  EXPECT_FALSE(panel->screen());
  EXPECT_FALSE(application->attribute("AXWindows"));
  const auto& listed = std::get<std::vector<AccessibilityElementPointer>>(windows.value());
  EXPECT_FALSE(listed.at(0)->perform("AXPress"));
}

}  // namespace

}  // namespace plemora
