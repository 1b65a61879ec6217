#include <gmock/gmock.h>

#include <map>

#include "adapters/stage/scripted_appearance.h"
#include "onboarding/setup_page.h"
#include "views/setup_scene.h"
#include "views/view_rig.h"

namespace plemora {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

using enum StepStatus;

const std::string firstButton = "Allow: Allow audio access";
const std::string lastButton = "Hide Apple's Icon: Replace the menu bar icon";
const std::string keepButton = "Keep Apple's Sound Icon";

struct SetupViewTest : ViewTest {
  ScriptedAppearance appearance{false};
  SetupView view;
  std::vector<std::string> told;
  std::map<std::string, Rect> frames;
  std::unique_ptr<SetupScene> scene;

  void SetUp() override {
    ViewTest::SetUp();
    appearance.wantsStillness = true;
    view.onButton = [this](const std::string& id) { told.push_back("press " + id); };
    view.onSkip = [this](const std::string& id) { told.push_back("skip " + id); };
    view.onShow = [this] { told.emplace_back("show"); };
    view.onFinish = [this] { told.emplace_back("finish"); };
    view.onButtonFrame = [this](const std::string& id, const Rect& frame) { frames[id] = frame; };
    scene = std::make_unique<SetupScene>(view, appearance);
  }
  void TearDown() override {
    window.reset();
    scene.reset();
    ViewTest::TearDown();
  }

  void set(StepStatus audio, StepStatus accessibility, StepStatus controlCenter,
           StepStatus soundIcon) {
    SetupState state;
    state.audio.set(audio);
    state.accessibility.set(accessibility);
    state.controlCenter.set(controlCenter);
    state.soundIcon.set(soundIcon);
    view.page.set(setupPage(state, true));
    if (window) {
      turn();
    }
  }
  void open(double height = 0) {
    scene->setOpaque(true);
    scene->setVisible(true);
    const QSizeF fitting(scene->fittingWidth(), scene->fittingHeight());
    show(scene->item(), {fitting.width(), height > 0 ? height : fitting.height()});
  }
  double top(const std::string& card) const {
    QQuickItem* found = item(card, QAccessible::Grouping);
    return found ? found->mapToScene({0, 0}).y() : -1;
  }
};

TEST_F(SetupViewTest, PointerBeginsSkipsAndFinishes) {
  set(active, pending, pending, active);
  open();
  click(firstButton);
  click(keepButton);
  click(lastButton);
  click("Finish Later");
  EXPECT_THAT(told, ElementsAre("press audio", "skip soundIcon", "press soundIcon", "finish"));
  EXPECT_EQ(find("Replace: Replace Sound in Control Center"), nullptr) << "its turn has not come";
}

TEST_F(SetupViewTest, KeysReachEverything) {
  set(done, active, pending, active);
  open();
  press(Qt::Key_Return);
  EXPECT_THAT(told, ElementsAre("press accessibility")) << "the next thing to do";
  told.clear();
  std::vector<std::string> order;
  for (int i = 0; i < 4; ++i) {
    press(Qt::Key_Tab);
    order.push_back(focused());
  }
  EXPECT_THAT(order, ElementsAre("Allow: Allow Plemora in Control Center", lastButton, keepButton,
                                 "Finish Later"));
  press(Qt::Key_Backtab);
  press(Qt::Key_Space);
  press(Qt::Key_Tab);
  press(Qt::Key_Enter);
  EXPECT_THAT(told, ElementsAre("skip soundIcon", "finish"));
}

TEST_F(SetupViewTest, SpeaksOfHowEachStepStands) {
  set(done, inSettings, working, pending);
  open();
  const auto statusOf = [this](const char* card) {
    return description(card, QAccessible::Grouping);
  };
  EXPECT_THAT(statusOf("Allow audio access"), StartsWith("Done. Lets Plemora turn each app"));
  EXPECT_THAT(statusOf("Allow Plemora in Control Center"), StartsWith("Waiting for you. "));
  EXPECT_THAT(statusOf("Allow Plemora in Control Center"), HasSubstr("Waiting for you"));
  EXPECT_THAT(statusOf("Replace Sound in Control Center"), HasSubstr("Restarting Control Center…"));
  EXPECT_THAT(statusOf("Replace the menu bar icon"), StartsWith("Not yet. "));
  EXPECT_NE(find("1 of 4 done", QAccessible::StaticText), nullptr);
  set(done, done, done, active);
  EXPECT_NE(find("3 of 4 done", QAccessible::StaticText), nullptr);
}

TEST_F(SetupViewTest, CardsKeepTheirPlaces) {
  set(active, pending, pending, pending);
  open();
  const double height = scene->fittingHeight();
  const double third = top("Replace Sound in Control Center");
  const double last = top("Replace the menu bar icon");
  ASSERT_GT(last, third);
  const StepStatus all[] = {pending, active, inSettings, working, done};
  for (const StepStatus audio : all) {
    for (const StepStatus icon : all) {
      set(audio, inSettings, working, icon);
      EXPECT_EQ(top("Replace Sound in Control Center"), third);
      EXPECT_EQ(top("Replace the menu bar icon"), last);
    }
  }
  set(done, done, done, done);
  EXPECT_EQ(scene->fittingHeight(), height) << "nor does the window jump at the end";
}

TEST_F(SetupViewTest, TellsWhereTheButtonsAre) {
  set(active, pending, pending, active);
  open();
  for (const auto& [id, name] :
       {std::pair{"audio", firstButton}, std::pair{"soundIcon", lastButton}}) {
    QQuickItem* button = item(name);
    ASSERT_NE(button, nullptr) << name;
    const QRectF place = button->mapRectToScene(button->boundingRect());
    EXPECT_EQ(frames[id], (Rect{place.x(), place.y(), place.width(), place.height()})) << name;
    EXPECT_GT(place.y(), 40) << "clear of the window's own buttons";
  }
  EXPECT_TRUE(frames["controlCenter"].isEmpty());
  set(done, pending, pending, active);
  EXPECT_TRUE(frames["audio"].isEmpty()) << "there is nothing left to press";
  set(done, done, done, done);
  EXPECT_TRUE(frames["soundIcon"].isEmpty());
}

TEST_F(SetupViewTest, ScrollsToTheFocusWhereTheScreenIsLow) {
  set(active, pending, pending, active);
  open(400);
  ASSERT_GT(frames["soundIcon"].maxY(), 400);
  press(Qt::Key_Tab);
  press(Qt::Key_Tab);
  ASSERT_EQ(focused(), lastButton);
  EXPECT_LT(frames["soundIcon"].maxY(), 400 - 62) << "above the foot of the window";
  click(lastButton);
  EXPECT_THAT(told, ElementsAre("press soundIcon"));
}

TEST_F(SetupViewTest, EndsWithWhatIsThere) {
  set(done, done, done, done);
  open();
  EXPECT_NE(find("You're all set", QAccessible::Heading), nullptr);
  EXPECT_NE(find("Plemora is in Control Center now, right where Sound used to be."), nullptr);
  EXPECT_EQ(find("4 of 4 done"), nullptr);
  press(Qt::Key_Return);
  click("Show Me");
  click("Done", QAccessible::Button);
  EXPECT_THAT(told, ElementsAre("finish", "show", "finish"));
}

TEST_F(SetupViewTest, GrowsWithItsTextsAndCutsNone) {
  set(active, pending, pending, pending);
  open();
  std::vector<double> heights;
  scene->setHeightHandler([&](double height) { heights.push_back(height); });
  const double before = scene->fittingHeight();
  SetupPage page = view.page.get();
  page.cards[0].line += " And very much more, which goes on for several lines, and then for some.";
  page.cards[0].line += page.cards[0].line;
  view.page.set(page);
  turn();
  EXPECT_THAT(heights, ElementsAre(scene->fittingHeight()));
  EXPECT_GT(scene->fittingHeight(), before + 30);
}

TEST_F(SetupViewTest, FollowsTheAppearance) {
  set(active, pending, pending, pending);
  open();
  EXPECT_GT(window->grabWindow().pixelColor(5, 5).lightness(), 200);
  appearance.setDark(true);
  EXPECT_LT(window->grabWindow().pixelColor(5, 5).lightness(), 80);
}

TEST_F(SetupViewTest, MovesOnlyWhileItIsSeenByThoseWhoDoNotMind) {
  set(active, pending, pending, pending);
  open();
  const auto moves = [this] {
    const QImage before = window->grabWindow();
    QTest::qWait(120);
    return window->grabWindow() != before;
  };
  EXPECT_FALSE(moves()) << "it was asked to keep still";
  scene->setVisible(false);
  appearance.wantsStillness = false;
  EXPECT_FALSE(moves()) << "it is not seen";
  scene->setVisible(true);
  EXPECT_TRUE(moves());
}

}  // namespace
}  // namespace plemora
