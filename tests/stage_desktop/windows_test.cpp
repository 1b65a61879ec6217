#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <vector>

#include "adapters/stage/desktop/stage_desktop.h"
#include "adapters/stage/memory_preferences.h"
#include "platform/file_drag.h"

namespace plemora {
namespace {

using ::testing::ElementsAre;
using Pane = StageSettings::Pane;

/// The program's own window with a title bar, beside System Settings.
class TitledWindow : public testing::Test {
 protected:
  TitledWindow() {
    desktop.program.start("com.quorvane.mixer", "Plemora");
    window = desktop.windows.makeTitled(
        {.identifier = "setup", .title = "Set Up", .windowWillClose = [this] { ++closed; }});
    window->setFrame({100, 400, 300, 200});
    window->order(WindowOrder::keyAndFront);
  }

  /// A place of the window, from its top left corner.
  Point at(double x, double y) const { return {window->frame().x + x, window->frame().maxY() - y}; }

  MemoryPreferences preferences;
  StageDesktop desktop{{preferences, preferences}, {.runsAudio = false}};
  std::unique_ptr<PanelWindow> window;
  int closed = 0;
};

TEST_F(TitledWindow, IsMovedByItsBarAndClosedByItsButton) {
  desktop.drag(at(150, 10), at(190, 60));
  EXPECT_EQ(window->frame(), (Rect{140, 350, 300, 200}));
  desktop.drag(at(150, 100), at(190, 160));
  EXPECT_EQ(window->frame(), (Rect{140, 350, 300, 200}));
  EXPECT_EQ(closed, 0);
  const Rect& close = StageWindow::closeButton;
  desktop.click(at(close.midX(), close.midY()));
  EXPECT_EQ(closed, 1);
  EXPECT_FALSE(window->isOnScreen());
}

TEST_F(TitledWindow, ComesForwardWithItsProgramAndSaysSo) {
  std::vector<std::int32_t> fronts;
  const auto hold =
      desktop.workspace.observeActivation([&](std::int32_t pid) { fronts.push_back(pid); });
  desktop.settings.show(Pane::general);
  const std::int32_t settings = desktop.settings.pid();
  desktop.settings.move(window->frame().origin());
  EXPECT_EQ(desktop.windowServer.hit(at(150, 20))->ownerPid, settings);
  desktop.program.activate();
  EXPECT_EQ(desktop.windowServer.hit(at(150, 20))->ownerPid, desktop.program.pid());
  desktop.settings.show(Pane::general);
  desktop.settings.move({600, 100});
  desktop.click(at(150, 100));
  const std::int32_t program = desktop.program.pid();
  EXPECT_THAT(fronts, ElementsAre(settings, program, settings, program));
}

TEST_F(TitledWindow, ItsFilesCanBeDraggedIntoAListOfPrograms) {
  desktop.consent.setPreflight(std::nullopt);
  desktop.accessibility.setTrusted(false);
  const auto dropOn = [&](Pane pane, Point to) -> std::optional<bool> {
    desktop.settings.show(pane);
    desktop.settings.move({600, 100});
    std::optional<bool> taken;
    desktop.press(at(150, 100));
    EXPECT_TRUE(desktop.fileDrag.begin(desktop.systemInfo.bundlePath(),
                                       [&](bool wasTaken) { taken = wasTaken; }));
    EXPECT_FALSE(desktop.fileDrag.begin("/other", {}));
    desktop.movePointer(to);
    EXPECT_FALSE(taken);
    desktop.release();
    return taken;
  };
  const Point inSettings{900, 300};
  struct Case {
    Pane pane;
    Point to;
    bool isTaken, isTrusted, isGranted;
  };
  for (const Case& drop : {Case{Pane::accessibility, {20, 20}, false, false, false},
                           Case{Pane::sound, inSettings, false, false, false},
                           Case{Pane::accessibility, inSettings, true, true, false},
                           Case{Pane::audioCapture, inSettings, true, true, true}}) {
    EXPECT_EQ(dropOn(drop.pane, drop.to), drop.isTaken);
    EXPECT_EQ(desktop.accessibility.isTrusted(), drop.isTrusted);
    EXPECT_EQ(desktop.consent.answer() == 0, drop.isGranted);
  }
  // No button is down.
  EXPECT_FALSE(desktop.fileDrag.begin("/program", {}));
}

TEST_F(TitledWindow, TheSystemAsksForTrustAndSendsTheUserToItsSettings) {
  desktop.accessibility.setTrusted(false);
  EXPECT_FALSE(desktop.accessibility.requestTrust());
  ASSERT_TRUE(desktop.prompt.isOpen());
  const auto middle = [](const Rect& rect) { return Point{rect.midX(), rect.midY()}; };
  desktop.click(middle(desktop.prompt.denyButton()));
  EXPECT_FALSE(desktop.prompt.isOpen());
  EXPECT_FALSE(desktop.settings.isOpen());
  desktop.accessibility.requestTrust();
  desktop.click(middle(desktop.prompt.allowButton()));
  EXPECT_FALSE(desktop.prompt.isOpen());
  EXPECT_EQ(desktop.settings.pane(), Pane::accessibility);
  // Trust ends the question.
  desktop.accessibility.requestTrust();
  desktop.accessibility.setTrusted(true);
  EXPECT_FALSE(desktop.prompt.isOpen());
  EXPECT_TRUE(desktop.accessibility.requestTrust());
  EXPECT_FALSE(desktop.prompt.isOpen());
}

}  // namespace
}  // namespace plemora
