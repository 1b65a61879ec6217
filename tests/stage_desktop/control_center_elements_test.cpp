#include <functional>

#include "controlcenter/accessibility_helpers.h"
#include "controlcenter/control_center_locator.h"
#include "controlcenter/control_center_primer.h"
#include "stage_desktop/desk.h"

namespace plemora {

namespace {

/// Control Center as the program sees it.
class ControlCenterElements : public Desk {
 protected:
  struct Program {
    explicit Program(StageDesktop& desktop, Preferences& preferences)
        : locator(desktop.screens, desktop.windowServer, desktop.accessibility, preferences,
                  desktop.workspace),
          primer(locator, desktop.accessibility, desktop.workspace, desktop.mainQueue,
                 desktop.clock) {}

    ControlCenterLocator locator;
    ControlCenterPrimer primer;
  };
};

TEST_F(ControlCenterElements, StandWhereTheirThingsAreDrawn) {
  const Program program(*desktop, programPreferences);
  const auto frameOf = [](AccessibilityElement& element) { return accessibility::frame(element); };
  const auto icon = desktop->menuBar.extra("com.apple.menuextra.controlcenter");
  const auto item = program.locator.menuItem();
  ASSERT_NE(item, nullptr);
  EXPECT_EQ(frameOf(*item), desktop->space.flipped(icon->frame));
  EXPECT_EQ(program.primer.editButton(), nullptr) << "it is closed";

  ASSERT_TRUE(item->perform("AXPress"));
  desktop->advance(0.5);
  const auto windows = accessibility::elements(*program.primer.control(), "AXWindows");
  ASSERT_EQ(windows.size(), 1U);
  EXPECT_EQ(frameOf(*windows[0]), windowsOf(StageWindowKind::controlCenter)[0].bounds);
  EXPECT_EQ(frameOf(*program.primer.editButton()),
            desktop->space.flipped(center().panel().editButton));
}

/// Opens Control Center by its element, looks at everything, and presses its edit button twice.
TEST_F(ControlCenterElements, AreSafeToUseWhateverVanishesAtWhateverStep) {
  const std::vector<std::function<void()>> misfortunes{
      [this] { center().kill(); },
      [this] { desktop->accessibility.setTrusted(false); },
      [this] { center().close(); },
      [this] { desktop->screens.set({}); },
      nullptr,  // what is asked is gone
  };
  for (std::size_t kind = 0; kind < misfortunes.size(); ++kind) {
    int steps = 1;  // of a run in which nothing happens
    for (int at = 0; at <= steps; at += 7) {
      begin();
      const Program program(*desktop, programPreferences);
      desktop->accessibility.setGate([&, at](const std::string&, int call) {
        if (call == at && misfortunes[kind]) {
          misfortunes[kind]();
        }
        return call == at && !misfortunes[kind] ? StageAnswer::vanished : StageAnswer::given;
      });
      if (const auto item = program.locator.menuItem()) {
        item->perform("AXPress");
      }
      if (const auto button = program.primer.editButton()) {
        button->perform("AXPress");
        button->perform("AXPress");
      }
      if (at == 0) {
        steps = desktop->accessibility.calls();
      }
      EXPECT_FALSE(center().isEditing() && !center().isOpen());
      desktop->advance(1.5);
      EXPECT_TRUE(center().isRunning());
    }
    EXPECT_GT(steps, 50) << "the steps were looked for";
  }
}

TEST_F(ControlCenterElements, ThatVanishStayAwayAndAreFoundAnew) {
  begin();
  const Program program(*desktop, programPreferences);
  const auto item = program.locator.menuItem();
  ASSERT_TRUE(item);
  desktop->accessibility.setGate([](const std::string&, int) { return StageAnswer::vanished; });
  EXPECT_FALSE(item->attribute("AXIdentifier"));
  desktop->accessibility.setGate(nullptr);
  EXPECT_FALSE(item->attribute("AXIdentifier"));
  EXPECT_FALSE(item->perform("AXPress"));
  EXPECT_TRUE(program.locator.menuItem()->attribute("AXIdentifier"));
}

}  // namespace

}  // namespace plemora
