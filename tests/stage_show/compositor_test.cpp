#include <cmath>

#include "main/stage/stage_compositor.h"
#include "stage_show/show_rig.h"

namespace plemora {
namespace {

const char* const red = "Rectangle { color: '#ff0000' }";
const char* const green = "Rectangle { color: '#00ff00' }";
constexpr Rect left{300, 400, 200, 100};
constexpr Rect right{400, 350, 200, 100};
constexpr Point shared{450, 425};

/// The colour of a point of the plain wallpaper.
const QColor plain("#3d6a94");

PanelWindowOptions level(int level) {
  PanelWindowOptions options;
  options.level = level;
  return options;
}

int distance(const QColor& a, const QColor& b) {
  return std::abs(a.red() - b.red()) + std::abs(a.green() - b.green()) +
         std::abs(a.blue() - b.blue());
}

using StageCompositorTest = StageShowTest;

TEST_F(StageCompositorTest, ShowsWindowsThatThePointerGoesThrough) {
  const auto below =
      makeWindow(left,
                 "Rectangle { color: area.pressed ? 'blue' : 'red'; MouseArea { id: area; "
                 "anchors.fill: parent } }");
  PanelWindowOptions options = level(101);
  options.ignoresMouseEvents = true;
  const auto overlay = makeWindow(left, "Rectangle { width: 1; color: '#00ff00' }", options);
  overlay->setAlpha(0.5);
  EXPECT_GT(colorAt(shared).green(), 120);
  desktop.press(shared);
  EXPECT_GT(colorAt(shared).blue(), 120);
  EXPECT_GT(colorAt(shared).green(), 120);
  desktop.release();
}

TEST_F(StageCompositorTest, AContainerClipsItsViewsEachAtItsAlpha) {
  const auto window = makeWindow({300, 300, 200, 200});
  const auto view = [&](const QByteArray& color) {
    return std::make_shared<StageContent>(
        std::make_shared<QmlView>("Rectangle { color: '" + color + "' }"), desktop.clock);
  };
  const auto low = view("red");
  const auto high = view("lime");
  const auto outside = colorAt({310, 490});
  window->surface().setContainer({50, 50, 100, 100}, 20);
  window->surface().setContents({{low, {}, 1}, {high, {0, 60, 100, 200}, 0.5}});
  EXPECT_EQ(colorAt({400, 430}), QColor("red"));
  const QColor mixed = colorAt({400, 370});
  EXPECT_NEAR(mixed.red(), 128, 2);
  EXPECT_NEAR(mixed.green(), 128, 2);
  EXPECT_EQ(colorAt({310, 490}), outside);
  EXPECT_EQ(colorAt({400, 340}), outside) << "what is too high is cut";
  EXPECT_EQ(colorAt({352, 447}), outside) << "and so are the corners";
  EXPECT_EQ(low->onScreen({10, 10, 5, 5}), (Rect{360, 435, 5, 5}));

  window->surface().setContents({{low, {}, 1}, {high, {0, 60, 100, 200}, 0}});
  EXPECT_EQ(colorAt({400, 370}), QColor("red"));
  window->surface().setContainer({0, 0, 100, 100}, 20);
  EXPECT_EQ(colorAt({310, 440}), QColor("red"));
  EXPECT_EQ(colorAt({420, 430}), outside);
}

TEST_F(StageCompositorTest, GlassSeesWhatIsBelowItBlurred) {
  const auto glass = makeWindow({300, 300, 300, 300}, {}, level(3));
  const auto effect = glass->surface().showEffect({});
  show.setWallpaper(StageWallpaper::black);
  const QColor overBlack = colorAt({450, 450});
  show.setWallpaper(StageWallpaper::white);
  const QColor overWhite = colorAt({450, 450});
  EXPECT_GT(distance(overWhite, overBlack), 60);
  EXPECT_EQ(colorAt({310, 290}), QColor(Qt::white));

  // Half of a window below it: the edge of that is soft.
  const auto below = makeWindow({450, 200, 400, 500}, "Rectangle { color: '#ff0000' }");
  const QColor far = colorAt({330, 450});
  const QColor near = colorAt({444, 450});
  const QColor on = colorAt({570, 450});
  EXPECT_GT(distance(far, on), 60);
  EXPECT_GT(distance(near, far), 10);
  EXPECT_GT(distance(near, on), 10);
  // It does not see itself, nor what is in front of it.
  const auto above = makeWindow({300, 300, 40, 40}, green, level(4));
  EXPECT_EQ(colorAt({360, 450}), far);
  below->order(WindowOrder::out);
  EXPECT_EQ(colorAt({450, 450}), overWhite);
}

TEST_F(StageCompositorTest, PaintsNothingAtRestAndOnlyWhatHasChanged) {
  const auto below = makeWindow(left, red);
  const auto window =
      makeWindow(right, "Rectangle { objectName: 'top'; color: 'blue' }", level(101));
  show.picture(screen);
  show.compositor().takeDamage(screen);
  const int before = show.compositor().paintCount();
  show.advance(2);
  show.picture(screen);
  EXPECT_EQ(show.compositor().paintCount(), before);
  EXPECT_TRUE(show.compositor().takeDamage(screen).isEmpty());

  window->setAlpha(0.8);
  show.picture(screen);
  EXPECT_EQ(show.compositor().paintCount(), before + 1);
  EXPECT_EQ(show.compositor().takeDamage(screen).boundingRect(), QRect(400, 350, 200, 100));
  // From the one that moved on.
  below->setFrame(left.offset(-50, 0));
  const QImage kept = show.picture(screen);
  EXPECT_TRUE(show.compositor().takeDamage(screen).contains(QRect(250, 300, 250, 100)));
  // The same picture as one that was painted in one go.
  StageCompositor fresh(desktop, static_cast<GlassWindows&>(show.windows()));
  fresh.setWallpaper(StageWallpaper::plain);
  fresh.setShowsPointer(false);
  EXPECT_EQ(fresh.picture(screen), kept);
}

TEST_F(StageCompositorTest, DrawsEveryScreenAtItsScale) {
  const auto window = makeWindow({1200, 500, 200, 100}, red);
  desktop.screens.set({StageDesktop::makeScreen(1, {0, 0, 1280, 800}, 1, true),
                       StageDesktop::makeScreen(2, {1280, 100, 640, 400}, 2, false)});
  const QImage main = show.picture(1);
  EXPECT_EQ(main.size(), QSize(1280, 800));
  EXPECT_EQ(main.pixelColor(1279, 800 - 550), QColor("#ff0000"));
  // The second one's top is at 500.
  const QImage second = show.picture(2);
  EXPECT_EQ(second.size(), QSize(1280, 800));
  desktop.screens.set({StageDesktop::makeScreen(1, {0, 0, 1280, 800}, 1, true),
                       StageDesktop::makeScreen(2, {1280, 300, 640, 400}, 2, false)});
  const QImage raised = show.picture(2);
  EXPECT_EQ(raised.pixelColor(2 * 100, 2 * 150), QColor("#ff0000"));
  EXPECT_EQ(raised.pixelColor(2 * 121, 2 * 150), plain);
  EXPECT_TRUE(show.picture(3).isNull());
}

}  // namespace
}  // namespace plemora
