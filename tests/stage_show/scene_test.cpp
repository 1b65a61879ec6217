#include <QEventLoop>
#include <QTimer>

#include "main/stage/stage_keys.h"
#include "main/stage/stage_loop.h"
#include "stage_show/show_rig.h"

namespace plemora {
namespace {

using SceneTest = StageShowTest;

constexpr Rect place{300, 300, 200, 100};

/// Where the white begins in a row that is black up to there.
int edge(const QImage& picture) {
  int x = static_cast<int>(place.x);
  while (x < place.maxX() && picture.pixelColor(x, 450).lightness() < 128) {
    ++x;
  }
  return x - static_cast<int>(place.x);
}

TEST_F(SceneTest, AnimationsFollowTheStagesTime) {
  const auto window =
      makeWindow(place,
                 "Rectangle { color: 'white'\n"
                 "  Rectangle { height: 100; color: 'black'\n"
                 "    NumberAnimation on width { from: 0; to: 200; duration: 1000 }\n"
                 "  } }");
  EXPECT_EQ(edge(show.picture(screen)), 0);
  show.advance(0.5);
  EXPECT_NEAR(edge(show.picture(screen)), 100, 5);
  EXPECT_NEAR(edge(show.picture(screen)), 100, 5);
  show.advance(0.25);
  EXPECT_NEAR(edge(show.picture(screen)), 150, 5);
  show.advance(5);
  EXPECT_EQ(edge(show.picture(screen)), 200);
}

TEST_F(SceneTest, TimersFollowItToo) {
  const auto window = makeWindow(place,
                                 "Rectangle { id: root; color: 'white'\n"
                                 "  Timer { interval: 2000; running: true\n"
                                 "          onTriggered: root.color = 'black' } }");
  show.picture(screen);
  show.advance(1.9);
  EXPECT_EQ(edge(show.picture(screen)), 0);
  show.advance(0.2);
  EXPECT_EQ(edge(show.picture(screen)), 200);
}

TEST(StageShowTwice, TheSameActsGiveTheSamePictures) {
  const auto act = [] {
    const auto store = std::make_shared<PreferenceStore>();
    MemoryPreferences ours(store);
    MemoryPreferences systems(store);
    storeFreshLayout(systems);
    StageDesktop desktop({ours, systems});
    StageShow show(desktop, StageShow::Time::virtualTime);
    const auto window = show.windows().makePanel({});
    window->setFrame(place);
    window->surface().setContent(std::make_shared<StageContent>(
        std::make_shared<QmlView>("Rectangle { color: 'white'\n"
                                  "  Rectangle { width: 50; height: 50; color: 'red'\n"
                                  "    NumberAnimation on rotation { from: 0; to: 90\n"
                                  "      duration: 700; easing.type: Easing.OutBack } } }"),
        desktop.clock));
    window->order(WindowOrder::front);
    desktop.controlCenter.open();
    show.advance(0.31);
    return show.picture(1);
  };
  const QImage first = act();
  EXPECT_FALSE(first.isNull());
  EXPECT_EQ(act(), first);
}

TEST_F(SceneTest, RealTimePassesInTheLoopWhichRestsInBetween) {
  int ticks = 0;
  int refreshes = 0;
  StageDesktop quiet({ours, systems}, {.runsAudio = false});
  StageShow real(quiet, StageShow::Time::realTime);
  StageLoop loop(quiet, real, 1, [&] { ++refreshes; });
  const double before = quiet.clock.mediaTime();
  const Timer timer = quiet.mainQueue.after(0.02, [&] { ++ticks; });
  QEventLoop events;
  QTimer::singleShot(120, &events, &QEventLoop::quit);
  events.exec();
  EXPECT_EQ(ticks, 1);
  EXPECT_GE(quiet.clock.mediaTime() - before, 0.02);
  EXPECT_GE(refreshes, 1);
  EXPECT_LE(refreshes, 4);
}

TEST(StageKeys, GoThereAndBack) {
  const struct {
    int qt;
    int stage;
  } keys[] = {{Qt::Key_Escape, 53}, {Qt::Key_Left, 123}, {Qt::Key_M, 46}, {Qt::Key_Space, 49}};
  for (const auto& key : keys) {
    EXPECT_EQ(stageKeyCode(key.qt), key.stage);
    EXPECT_EQ(qtKeyOf(key.stage), key.qt);
  }
  EXPECT_EQ(stageKeyCode(Qt::Key_Backtab), stageKeyCode(Qt::Key_Tab));
  EXPECT_EQ(stageKeyCode(Qt::Key_F35), -1);
  EXPECT_EQ(qtKeyOf(-1), 0);
  const int modifiers = Qt::ShiftModifier | Qt::ControlModifier;
  EXPECT_EQ(stageModifiers(modifiers), 0x120000u);
  EXPECT_EQ(qtModifiersOf(0x120000), modifiers);
}

}  // namespace
}  // namespace plemora
