#include <gmock/gmock.h>

#include "adapters/stage/scripted_appearance.h"
#include "onboarding/helper_page.h"
#include "views/callout_scene.h"
#include "views/helper_scene.h"
#include "views/ripple_scene.h"
#include "views/view_rig.h"

namespace plemora {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* back = "Cancel and go back to setup";
constexpr const char* ask = "Can't drag? Ask with a system prompt instead";
constexpr const char* icon = "Plemora";

struct HelperViewTest : ViewTest {
  ScriptedAppearance appearance;
  HelperState state;
  HelperView view;
  CalloutView callout{.title = "Your new Sound menu",
                      .line = "App volumes, outputs and the master slider.",
                      .buttonTitle = "Open",
                      .buttonSymbol = "arrow.up",
                      .onOpen = {}};
  std::vector<std::string> told;
  std::unique_ptr<ComponentScene> scene;

  void SetUp() override {
    ViewTest::SetUp();
    appearance.wantsStillness = true;
    view.onBack = [this] { told.emplace_back("back"); };
    view.onAskInstead = [this] { told.emplace_back("ask"); };
    view.onDone = [this] { told.emplace_back("done"); };
    view.onDrag = [this] { told.emplace_back("drag"); };
    callout.onOpen = [this] { told.emplace_back("open"); };
  }
  void TearDown() override {
    window.reset();
    scene.reset();
    ViewTest::TearDown();
  }

  void update() {
    view.page.set(helperPage(state));
    if (window) {
      turn();
    }
  }
  void open(HelperState::Kind kind) {
    state.kind.set(kind);
    update();
    openScene(std::make_unique<HelperScene>(view, appearance));
  }
  void openScene(std::unique_ptr<ComponentScene> made) {
    scene = std::move(made);
    scene->setVisible(true);
    show(scene->item(), {scene->fittingWidth(), scene->fittingHeight()});
  }
};

TEST_F(HelperViewTest, ButtonsAreReachedByPointerAndKeys) {
  open(HelperState::Kind::audioPermission);
  click(back);
  click(ask);
  press(Qt::Key_Tab);
  EXPECT_EQ(focused(), back);
  press(Qt::Key_Space);
  press(Qt::Key_Tab);
  EXPECT_EQ(focused(), ask);
  press(Qt::Key_Return);
  EXPECT_THAT(told, ElementsAre("back", "ask", "back", "ask"));
  EXPECT_EQ(find("It's done"), nullptr);

  state.kind.set(HelperState::Kind::controlCenter);
  state.controlCenterRetry.set(true);
  update();
  EXPECT_EQ(find(icon), nullptr);
  EXPECT_EQ(find(ask), nullptr);
  click("It's done");
  EXPECT_EQ(told.back(), "done");
}

TEST_F(HelperViewTest, SpeaksItsInstructionsAsOneSentence) {
  open(HelperState::Kind::accessibility);
  EXPECT_NE(find("Drag Plemora into the list in System Settings above and turn it on there."),
            nullptr);
  state.kind.set(HelperState::Kind::controlCenter);
  update();
  EXPECT_NE(find("Click Control Center in the menu bar."), nullptr) << "without the symbol";
}

TEST_F(HelperViewTest, DragsTheIconOnceItIsPulled) {
  open(HelperState::Kind::accessibility);
  const QPoint start = place(icon);
  const auto to = [&](int x) { QTest::mouseMove(window.get(), start + QPoint(x, 0)); };
  to(0);
  QTest::mousePress(window.get(), Qt::LeftButton, {}, start);
  to(3);
  EXPECT_THAT(told, IsEmpty()) << "a hand that shakes drags nothing";
  to(4);
  EXPECT_THAT(told, ElementsAre("drag"));
  to(40);
  QTest::mouseRelease(window.get(), Qt::LeftButton, {}, start + QPoint(40, 0));
  to(80);
  EXPECT_THAT(told, ElementsAre("drag")) << "once for each press";
}

TEST_F(HelperViewTest, TellsItsHeightWhenTheTextChanges) {
  open(HelperState::Kind::audioPermission);
  EXPECT_EQ(scene->fittingWidth(), 468);
  const double before = scene->fittingHeight();
  std::vector<double> heights;
  scene->setHeightHandler([&](double height) { heights.push_back(height); });
  state.settingsMissing.set(true);
  update();
  EXPECT_THAT(heights, ElementsAre(scene->fittingHeight()));
  EXPECT_GT(scene->fittingHeight(), before);
}

TEST_F(HelperViewTest, SuccessShowsNothingElse) {
  open(HelperState::Kind::accessibility);
  state.succeeded.set(true);
  update();
  EXPECT_NE(find("Done", QAccessible::Graphic), nullptr);
  EXPECT_NE(find("Plemora is allowed in Control Center."), nullptr);
  for (const char* gone : {back, ask, icon}) {
    EXPECT_EQ(find(gone), nullptr) << gone;
  }
}

TEST_F(HelperViewTest, CalloutIsAsLargeAsItsTexts) {
  openScene(std::make_unique<CalloutScene>(callout, appearance));
  const double width = scene->fittingWidth();
  click("Open");
  press(Qt::Key_Tab);
  press(Qt::Key_Space);
  EXPECT_THAT(told, ElementsAre("open", "open"));
  EXPECT_NE(find("Your new Sound menu", QAccessible::Heading), nullptr);
  callout.line += " And more";
  EXPECT_GT(CalloutScene(callout, appearance).fittingWidth(), width + 20);
}

TEST_F(HelperViewTest, RingsSpreadOrStandStill) {
  openScene(std::make_unique<RippleScene>(appearance));
  EXPECT_EQ(scene->fittingWidth(), 64);
  EXPECT_EQ(scene->fittingHeight(), 64);
  const auto moves = [this] {
    const QImage before = window->grabWindow();
    QTest::qWait(120);
    return window->grabWindow() != before;
  };
  EXPECT_FALSE(moves());
  scene->setVisible(false);
  appearance.wantsStillness = false;
  scene->setVisible(true);
  EXPECT_TRUE(moves());
  scene->setVisible(false);
  turn();
  EXPECT_FALSE(moves());
}

}  // namespace
}  // namespace plemora
