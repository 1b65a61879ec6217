#include <algorithm>

#include "stage_desktop/desk.h"

namespace plemora {

namespace {

using testing::DoubleNear;
using testing::HasSubstr;
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

TEST_F(ControlCenter, ReadsTheBoxesOfThisMachineAndTheControlsOfEveryMachine) {
  const FreshLayout layout = freshLayout();
  const auto put = [&](const char* key, const char* domain, PreferenceHost host,
                       const std::string& bytes) {
    programPreferences.setValue(key, PreferenceData{bytes}, domain, host);
    programPreferences.synchronize(domain, host);
  };
  *store = {};
  put(boxesKey, boxesDomain, PreferenceHost::any, layout.boxes);
  put(controlsKey, controlsDomain, PreferenceHost::any, layout.controls);
  begin();
  EXPECT_THAT(center().layoutProblem(), HasSubstr("boxes"));
  EXPECT_THAT(center().grid().tiles(), IsEmpty());

  *store = {};
  put(boxesKey, boxesDomain, PreferenceHost::current, layout.boxes);
  put(controlsKey, controlsDomain, PreferenceHost::current, layout.controls);
  begin();
  EXPECT_THAT(center().layoutProblem(), HasSubstr("controls"));

  put(controlsKey, controlsDomain, PreferenceHost::any, layout.controls);
  restartCenter();
  EXPECT_EQ(center().layoutProblem(), "");
}

TEST_F(ControlCenter, SaysWhatItDoesNotUnderstandAndShowsNothingOfIt) {
  const FreshLayout fresh = freshLayout();
  struct Case {
    std::string boxes, controls;
  };
  for (const auto& [boxes, controls] :
       {Case{"no json", fresh.controls}, Case{"[]", fresh.controls},
        Case{R"([{"grid":{"elements":{}},"displayablesData":""}])", fresh.controls},
        Case{R"([{"grid":{"elements":[]},"displayablesData":"?"}])", fresh.controls},
        Case{R"([{"grid":{"elements":[]},"displayablesData":""}])", fresh.controls},
        Case{R"([{"grid":{"elements":[7]}}])", fresh.controls}, Case{fresh.boxes, "[]"},
        Case{fresh.boxes, R"({"Controls":[{"Identifier":[1]}]})"}}) {
    storeValues(boxes, controls);
    restartCenter();
    EXPECT_NE(center().layoutProblem(), "") << boxes.substr(0, 80) << controls.substr(0, 80);
    EXPECT_THAT(center().grid().tiles(), IsEmpty());
    openCenter();
    EXPECT_FALSE(center().addGalleryEntry(0));
  }
}

TEST_F(ControlCenter, KilledItIsBackAMomentLaterAndOnlyThenSeesANewLayout) {
  openCenter();
  const auto pid = center().pid();
  StageTileGrid changed = stored();
  ASSERT_TRUE(changed.remove(module("Sound").id));
  storeValues(changed.boxesValue(), changed.controlsValue());
  center().close();
  openCenter();
  EXPECT_NE(center().grid().module("Sound"), nullptr) << "it reads when it starts";

  ASSERT_TRUE(desktop->workspace.forceTerminate(pid));
  EXPECT_FALSE(center().isRunning());
  EXPECT_THAT(windowsOf(StageWindowKind::controlCenter), IsEmpty());
  EXPECT_EQ(desktop->menuBar.extra("com.apple.menuextra.controlcenter"), nullptr);
  desktop->advance(0.95);
  center().open();
  EXPECT_FALSE(center().isRunning() || center().isOpen());
  desktop->advance(0.1);
  EXPECT_TRUE(center().isRunning());
  EXPECT_FALSE(center().isOpen());
  EXPECT_NE(center().pid(), pid);
  EXPECT_EQ(center().grid().module("Sound"), nullptr);
  EXPECT_EQ(desktop->workspace.runningApplication(center().pid())->bundleID,
            "com.apple.controlcenter");
  EXPECT_NE(desktop->menuBar.extra("com.apple.menuextra.controlcenter"), nullptr);

  center().faults.staysDown = true;
  center().kill();
  desktop->advance(10);
  EXPECT_FALSE(center().isRunning());
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

TEST_F(ControlCenter, ClosesOnAClickElsewhereAndOnEscape) {
  const auto panel = showPanel({100, 100, 200, 200});
  for (const Point& elsewhere :
       {Point{20, 500}, Point{200, 200}, iconOf("com.apple.menuextra.wifi")}) {
    openCenter();
    desktop->click(elsewhere);
    EXPECT_FALSE(center().isOpen());
  }
  openCenter();
  desktop->click({center().panel().panel.midX(), center().panel().panel.minY() + 5});
  EXPECT_TRUE(center().isOpen()) << "that was inside";
  desktop->key(36);
  EXPECT_TRUE(center().isOpen()) << "that was another key";
  desktop->key(escapeKeyCode);
  EXPECT_FALSE(center().isOpen());
}

TEST_F(ControlCenter, IsAsSlowAsItIsToldToBe) {
  center().faults = {.openDelay = 1.5, .editDelay = 0.7};
  desktop->click(centerIcon());
  desktop->advance(1.45);
  EXPECT_FALSE(center().isOnScreen());
  desktop->advance(0.1);
  EXPECT_TRUE(center().isOpen());
  center().pressEditButton();
  desktop->advance(0.65);
  EXPECT_FALSE(center().isEditing());
  desktop->advance(0.1);
  EXPECT_TRUE(center().isEditing());

  // A press that closes it before it is there, and a death in between.
  center().close();
  desktop->advance(1);
  center().toggle();
  center().toggle();
  desktop->advance(2);
  EXPECT_FALSE(center().isOnScreen());
  center().toggle();
  center().kill();
  desktop->advance(2);
  EXPECT_TRUE(center().isRunning());
  EXPECT_FALSE(center().isOnScreen());
}

TEST_F(ControlCenter, CoversTheScreensInEditModeBehindItsPanel) {
  desktop->screens.set({StageDesktop::makeScreen(1, {0, 0, 1440, 900}, 2, true),
                        StageDesktop::makeScreen(2, {1440, 100, 800, 600}, 1, false)});
  openCenter();
  EXPECT_THAT(windowsOf(StageWindowKind::controlCenterEditing), IsEmpty());
  desktop->click(middle(center().panel().editButton));
  ASSERT_TRUE(center().isEditing());
  std::vector<Rect> covers;
  for (const WindowInfo& window : windowsOf(StageWindowKind::controlCenterEditing)) {
    EXPECT_EQ(window.ownerName, "Control Center");
    covers.push_back(*window.bounds);
  }
  EXPECT_THAT(covers,
              testing::UnorderedElementsAre(Rect{0, 0, 1440, 900}, Rect{1440, 200, 800, 600}));
  EXPECT_EQ(desktop->windowServer.hit(middle(center().panel().panel))->kind,
            StageWindowKind::controlCenter);
  desktop->click(middle(center().panel().editButton));
  EXPECT_FALSE(center().isEditing());
  EXPECT_THAT(windowsOf(StageWindowKind::controlCenterEditing), IsEmpty());
  EXPECT_TRUE(center().isOpen());

  center().faults.ignoresEditButton = true;
  desktop->click(middle(center().panel().editButton));
  EXPECT_FALSE(center().isEditing());
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

TEST_F(ControlCenter, RunsTheControlOfATileThatIsPressedAndNothingElse) {
  addNewControl();
  openCenter();
  enterAndLeaveEditMode();
  const Rect tile = center().panel().tile(*center().grid().tile("NEW"));
  desktop->press(middle(tile));
  EXPECT_EQ(presses, 0) << "not before the button is up again";
  desktop->movePointer({tile.midX(), tile.minY() - 30});
  desktop->release();
  EXPECT_EQ(presses, 0) << "nor when it comes up elsewhere";
  desktop->click(middle(tile), StageButton::right);
  EXPECT_EQ(presses, 0);
  desktop->click(middle(tile));
  EXPECT_EQ(presses, 1);

  // Modules are switched.
  EXPECT_TRUE(center().isOn("Bluetooth"));
  desktop->clickTile(module("Bluetooth").id);
  EXPECT_FALSE(center().isOn("Bluetooth"));
  EXPECT_TRUE(center().isOn("WiFi"));

  center().pressEditButton();
  desktop->clickTile("NEW");
  EXPECT_EQ(presses, 1);
  center().pressEditButton();
  desktop->extensions.installed.clear();
  desktop->clickTile("NEW");
  EXPECT_EQ(presses, 1) << "its app is gone";
}

TEST_F(ControlCenter, MovesTheSoundOfTheDefaultOutputByItsSlider) {
  const auto first = desktop->plug({.uid = "one"});
  const auto second = desktop->plug({.uid = "two"});
  desktop->hal.setDefaultOutput(second);
  openCenter();
  const Rect track = center().slider(module("Sound"));
  desktop->drag({track.minX() + 5, track.midY()}, {track.minX() + track.width / 4, track.midY()});
  EXPECT_THAT(*desktop->hal.device(second).volume, testing::FloatNear(0.25F, 0.001F));
  EXPECT_EQ(desktop->hal.device(first).volume, 1.0F);
  EXPECT_THAT(center().sliderValue(module("Sound")), DoubleNear(0.25, 0.001));
  EXPECT_TRUE(center().isOn("Sound"));
}

TEST_F(ControlCenter, PutsItsIconsWhereItsPreferencesWantThem) {
  const auto rightEdge = [&] {
    return 1440 - desktop->menuBar.extra("com.apple.menuextra.controlcenter")->frame.maxX();
  };
  const auto prefer = [&](const char* key, PreferenceValue value) {
    programPreferences.setValue(key, value, controlsDomain, PreferenceHost::any);
    programPreferences.synchronize(controlsDomain, PreferenceHost::any);
    center().followIconPreferences();
  };
  EXPECT_EQ(rightEdge(), 182);
  prefer("NSStatusItem Preferred Position BentoBox", std::int64_t{240});
  EXPECT_EQ(rightEdge(), 240);
  prefer("NSStatusItem Preferred Position BentoBox-0", 300.5);
  EXPECT_EQ(rightEdge(), 300.5);
  prefer("NSStatusItem Preferred Position BentoBox-0", 0.0);
  EXPECT_EQ(rightEdge(), 0);

  EXPECT_NE(desktop->menuBar.extra("com.apple.menuextra.sound"), nullptr);
  prefer("NSStatusItem VisibleCC Sound", false);
  EXPECT_EQ(desktop->menuBar.extra("com.apple.menuextra.sound"), nullptr);

  // No item stands on another one, and all are Control Center's windows at the status level.
  const auto items = windowsOf(StageWindowKind::statusItem);
  ASSERT_GE(items.size(), 4U);
  for (const WindowInfo& item : items) {
    EXPECT_EQ(item.layer, statusWindowLevel);
    EXPECT_EQ(item.ownerName, "Control Center");
    EXPECT_EQ(item.bounds->minY(), 0);
    EXPECT_LE(item.bounds->height, 40);
    for (const WindowInfo& other : items) {
      EXPECT_TRUE(item == other || !item.bounds->intersects(*other.bounds));
    }
  }
}

}  // namespace

}  // namespace plemora
