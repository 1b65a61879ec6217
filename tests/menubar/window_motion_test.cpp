#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <numbers>
#include <vector>

#include "adapters/stage/scripted_screens.h"
#include "adapters/stage/stage_windows.h"
#include "adapters/stage/virtual_clock.h"
#include "adapters/stage/virtual_display_links.h"
#include "adapters/stage/virtual_main_queue.h"
#include "menubar/layout_helpers.h"
#include "menubar/window_animation.h"
#include "menubar/window_spring.h"

namespace plemora {
namespace {

using testing::ElementsAre;

constexpr Rect start{100, 100, 300, 200};
constexpr Rect target{500, 300, 400, 100};

struct WindowMotionTest : testing::Test {
  VirtualClock clock;
  VirtualMainQueue main{clock};
  ScriptedScreens screens;
  StageWindows windows{main, screens};
  VirtualDisplayLinks links{main, 100};
  std::shared_ptr<PanelWindow> window = windows.makePanel({});
  WindowSpring spring{window, links, clock};
  WindowAnimation animation{window, links, clock};
  int completions = 0;

  WindowMotionTest() {
    window->setFrame(start);
    window->order(WindowOrder::front);
  }

  const std::vector<Rect>& frames() { return windows.windows().at(0)->frames; }
};

// Against the spring's equation, x'' + 2 zeta omega x' + omega^2 (x - 1) = 0, in small steps. An
// over-damped spring moves as a critically damped one.
TEST_F(WindowMotionTest, SpringFollowsItsEquation) {
  for (const double damping : {0.2, 0.8, 0.999, 1.0, 1.5}) {
    SCOPED_TRACE(damping);
    spring.damping = damping;
    const double zeta = std::min(damping, 1.0);
    const double omega = 2 * std::numbers::pi / 0.55;
    const double step = 1e-5;
    double x = 0;
    double speed = 0;
    for (int count = 0; count <= 121'000; ++count) {
      if (count % 5'500 == 0) {
        ASSERT_NEAR(spring.progress(count * step), x, 1e-3) << count * step;
      }
      speed += step * (omega * omega * (1 - x) - 2 * zeta * omega * speed);
      x += step * speed;
    }
  }
}

TEST_F(WindowMotionTest, SpringFadesBeforeItSettlesExactlyThere) {
  window->setAlpha(0.5);
  spring.animate(target, 1, [this] { ++completions; });
  EXPECT_EQ(window->frame(), start);
  main.advance(0.165);
  EXPECT_NEAR(window->alpha(), 0.5 + 0.5 * 0.16 / 0.33, 1e-9);
  const double p = spring.progress(0.16);
  EXPECT_NEAR(window->frame().x, 100 + 400 * p, 1e-9);
  EXPECT_NEAR(window->frame().height, 200 - 100 * p, 1e-9);
  main.advance(0.18);
  EXPECT_EQ(window->alpha(), 1);
  main.advance(0.86);  // 1.205 s in
  EXPECT_TRUE(spring.isRunning());
  EXPECT_EQ(completions, 0);
  main.advance(0.02);
  EXPECT_EQ(window->frame(), target);
  EXPECT_EQ(completions, 1);
  EXPECT_EQ(main.pendingTimers(), 0);
}

TEST_F(WindowMotionTest, SpringIsAimedAnewFromWhereTheWindowIs) {
  spring.animate(target, 1, [this] { completions += 100; });
  main.advance(0.2);
  const Rect between = window->frame();
  spring.animate(start, 0, [this] { ++completions; });
  EXPECT_EQ(window->frame(), between) << "no jump";
  main.advance(0.015);
  EXPECT_NEAR(window->frame().x, between.x, 5);
  main.advance(2);
  EXPECT_EQ(window->frame(), start);
  EXPECT_EQ(window->alpha(), 0);
  EXPECT_EQ(completions, 1) << "the first run has not ended";
  EXPECT_THAT(links.madeFor(), ElementsAre(1)) << "one link for both";
}

TEST_F(WindowMotionTest, SpringGoesElsewhereInFlightAndAtOnceAtRest) {
  spring.retarget(target);
  EXPECT_EQ(window->frame(), target);
  EXPECT_FALSE(spring.isRunning());

  spring.animate(start, 1);
  main.advance(0.1);
  spring.retarget({0, 0, 0, 50});
  EXPECT_NE(window->frame().y, 0);
  main.advance(0.9);
  EXPECT_EQ(window->frame().width, 1) << "never narrower than that while it moves";
  main.advance(1);
  EXPECT_EQ(window->frame(), (Rect{0, 0, 0, 50}));
}

TEST_F(WindowMotionTest, EndsWhenTheWindowGoes) {
  spring.animate(target, 1);
  animation.animateAlpha(0, 1, [this] { ++completions; });
  main.advance(0.05);
  window.reset();
  main.advance(0.05);
  EXPECT_EQ(main.pendingTimers(), 0);
  EXPECT_EQ(completions, 0);
  spring.animate(target, 1);
  spring.retarget(target);
  animation.animateFrame(target, 1);
  EXPECT_EQ(main.pendingTimers(), 0);
}

TEST(WindowAnimation, EasesOut) {
  // The cubic curve with the control points (0, 0) and (0.58, 1).
  struct Case {
    double time;
    double share;
  };
  for (const Case& c : {Case{-1, 0}, Case{0, 0}, Case{0.25, 0.3781}, Case{0.5, 0.6846},
                        Case{0.75, 0.9065}, Case{1, 1}, Case{7, 1}, Case{std::nan(""), 0}}) {
    EXPECT_NEAR(WindowAnimation::easeOut(c.time), c.share, 0.0005) << c.time;
  }
}

TEST_F(WindowMotionTest, AnimatesFrameAndAlphaApart) {
  window->setAlpha(0);
  animation.animateAlpha(1, 0.16, [this] { ++completions; });
  animation.animateFrame(target, 0.16);
  main.advance(0.1);
  // Another height on the way changes where it goes and leaves the fade alone.
  const Rect between = window->frame();
  animation.animateFrame(start, 0.18);
  EXPECT_EQ(animation.targetFrame(), start);
  EXPECT_EQ(window->frame(), between);
  main.advance(0.065);
  EXPECT_EQ(window->alpha(), 1);
  EXPECT_EQ(completions, 1);
  EXPECT_NE(window->frame(), start);
  main.advance(0.13);
  EXPECT_EQ(window->frame(), start);
  EXPECT_EQ(animation.targetFrame(), std::nullopt);
  EXPECT_FALSE(animation.isRunning());
  EXPECT_EQ(main.pendingTimers(), 0);
  EXPECT_THAT(links.madeFor(), ElementsAre(1));
}

TEST_F(WindowMotionTest, AFadeThatWasOvertakenNeverCompletes) {
  animation.animateAlpha(0, 0.12, [this] { completions += 100; });
  main.advance(0.06);
  const double between = window->alpha();
  EXPECT_GT(between, 0);
  animation.animateAlpha(1, 0.16, [this] {
    ++completions;
    animation.animateAlpha(0.5, 0.1);  // from inside
  });
  EXPECT_EQ(window->alpha(), between);
  main.advance(0.17);
  EXPECT_EQ(completions, 1);
  main.advance(0.2);
  EXPECT_EQ(window->alpha(), 0.5);

  animation.animateAlpha(0, 0.12, [this] { ++completions; });
  animation.stop();
  main.advance(1);
  EXPECT_EQ(window->alpha(), 0.5);
  EXPECT_EQ(completions, 1);
}

TEST_F(WindowMotionTest, StepsByTheTimeThatHasPassed) {
  animation.animateFrame(target, 0.16);
  const auto before = frames().size();
  main.advance(0.02);
  clock.advanceTo(clock.mediaTime() + 0.1);  // the program was held up
  main.advance(0.1);
  EXPECT_EQ(window->frame(), target);
  EXPECT_LE(frames().size() - before, 16u) << "at most one step for each frame of the display";
}

TEST(PinTop, KeepsTheTopEdge) {
  EXPECT_EQ(PinTop::frame({10, 100, 308, 300}, 350), (Rect{10, 50, 308, 350}));
  EXPECT_EQ(PinTop::content({308, 300}, 200, false), (Rect{0, 100, 308, 200}));
  EXPECT_EQ(PinTop::content({308, 300}, 200, true), (Rect{0, 0, 308, 200}));
}

}  // namespace
}  // namespace plemora
