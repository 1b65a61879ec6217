#include <QEventLoop>
#include <QTimer>

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

}  // namespace
}  // namespace plemora
