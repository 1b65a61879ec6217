#include "adapters/stage/desktop/stage_outputs.h"
#include "stage_desktop/desk.h"

namespace plemora {

namespace {

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
