#include <algorithm>

#include "stage_desktop/desk.h"

namespace plemora {

namespace {

using testing::DoubleNear;
using testing::IsEmpty;

class ControlCenter : public Desk {};

TEST_F(ControlCenter, LaysItsTilesOutAsTheLayoutHasThem) {
  struct Case {
    const char* module;
    Rect frame;  // from the top left corner of the panel, y down
  };
  const Rect panel = center().panel().panel;
  for (const auto& [name, wanted] :
       {Case{"WiFi", {14, 14, 140, 64}}, Case{"NowPlaying", {166, 14, 140, 140}},
        Case{"AirDrop", {90, 90, 64, 64}}, Case{"Sound", {14, 318, 292, 64}}}) {
    const Rect frame = center().panel().tile(module(name));
    EXPECT_EQ(
        (Rect{frame.minX() - panel.minX(), panel.maxY() - frame.maxY(), frame.width, frame.height}),
        wanted)
        << name;
    EXPECT_TRUE(center().isShown(module(name))) << name;
  }
  EXPECT_EQ(center().layoutProblem(), "");
  EXPECT_THAT(center().grid().complaints(), IsEmpty());
  // What it does not know it leaves out: a size, a tile that waits for its place.
  EXPECT_EQ(center().grid().module("Weather"), nullptr);
  EXPECT_EQ(center().grid().tile("waiting"), nullptr);
  // Other programs' controls of the first layout are known.
  EXPECT_EQ(std::ranges::count_if(center().shownTiles(),
                                  [](const StageTile& tile) { return tile.control.has_value(); }),
            2);
}

TEST_F(ControlCenter, OpensAndClosesFromItsIconAndFadesBothTimes) {
  desktop->click(centerIcon());
  EXPECT_TRUE(center().isOpen());
  EXPECT_TRUE(desktop->menuBar.extra("com.apple.menuextra.controlcenter")->isHighlighted);
  desktop->advance(StageControlCenter::fadeInDuration / 2);
  auto windows = windowsOf(StageWindowKind::controlCenter);
  ASSERT_EQ(windows.size(), 1U);
  EXPECT_THAT(*windows[0].alpha, DoubleNear(0.5, 0.01));
  desktop->advance(StageControlCenter::fadeInDuration);
  windows = windowsOf(StageWindowKind::controlCenter);
  EXPECT_EQ(windows[0].alpha, 1);
  EXPECT_EQ(windows[0].ownerName, "Control Center");
  EXPECT_EQ(windows[0].ownerPid, center().pid());
  EXPECT_NE(windows[0].layer, statusWindowLevel);
  EXPECT_EQ(windows[0].bounds->minY(), 0);
  EXPECT_EQ(windows[0].bounds->width, 320);
  EXPECT_EQ(windows[0].bounds->maxX(), 1440 - 8);
  EXPECT_GT(windows[0].bounds->height, 200);

  desktop->click(centerIcon());
  desktop->advance(StageControlCenter::fadeOutDuration / 2);
  EXPECT_THAT(*windowsOf(StageWindowKind::controlCenter)[0].alpha, DoubleNear(0.5, 0.01));
  // Opened while it fades away, it comes back from there.
  desktop->click(centerIcon());
  EXPECT_THAT(center().alpha(), DoubleNear(0.5, 0.01));
  desktop->advance(1);
  EXPECT_EQ(center().alpha(), 1);
  desktop->click(centerIcon());
  desktop->advance(StageControlCenter::fadeOutDuration + 0.01);
  EXPECT_THAT(windowsOf(StageWindowKind::controlCenter), IsEmpty());
}

TEST_F(ControlCenter, ShowsANewControlOnlyOnceEditModeWasEnteredAndLeft) {
  addNewControl();
  openCenter();
  const auto isNewShown = [&] { return center().isShown(*center().grid().tile("NEW")); };
  EXPECT_FALSE(isNewShown());
  EXPECT_FALSE(desktop->clickTile("NEW"));
  EXPECT_EQ(presses, 0);
  center().pressEditButton();
  EXPECT_FALSE(isNewShown()) << "it was entered, not left";
  center().pressEditButton();
  EXPECT_TRUE(isNewShown());
  EXPECT_TRUE(desktop->clickTile("NEW"));
  EXPECT_EQ(presses, 1);

  restartCenter();
  EXPECT_TRUE(isNewShown()) << "it keeps which it has shown";
  center().forgetControls();
  EXPECT_FALSE(isNewShown());
  openCenter();
  center().pressEditButton();
  restartCenter();
  EXPECT_FALSE(isNewShown()) << "killed in edit mode, it has not left it";
  EXPECT_TRUE(center().isShown(module("Sound")));
}

}  // namespace

}  // namespace plemora
