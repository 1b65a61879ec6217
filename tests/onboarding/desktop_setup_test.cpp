#include "onboarding/desktop_setup.h"

#include <gmock/gmock.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "adapters/stage/scripted_login_item.h"
#include "menubar/menu_bar_world.h"

namespace plemora {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr int allowed = 0;
constexpr int undecided = 2;

/// A desktop and the setup on it.
struct World : MenuBarWorld {
  ScriptedLoginItem loginItem;
  SetupView* view = nullptr;
  std::optional<bool> isTrayIconShown = true;
  int panels = 0;
  DesktopSetup setup{{{main, clock, defaults, workspace, application, screens, input, windows,
                       links, bar, picker, look, updater},
                      consent,
                      loginItem,
                      [this](SetupView& shown) {
                        view = &shown;
                        return content;
                      },
                      [] { return std::string("Start the server."); },
                      [this] { return isTrayIconShown; },
                      "Get a tray."}};

  World() {
    setup.onShowPanel = [this] { ++panels; };
  }
  const SetupPage& page() { return view->page.get(); }
  /// The cards, each with "!" when it is done.
  std::vector<std::string> cards() {
    std::vector<std::string> all;
    for (const SetupCard& card : page().cards) {
      all.push_back(card.id + (card.status == StepStatus::done ? "!" : ""));
    }
    return all;
  }
  bool isCompleted() { return defaults.boolean("didCompleteSetup").value_or(false); }
};

TEST(DesktopSetupTest, ShowsTheStepsThatThereAreAndWhatIsDoneAlready) {
  struct Case {
    int consent;
    std::optional<bool> tray;
    LoginItemState login;
    std::vector<std::string> cards;
    bool isComplete;
  };
  const auto absent = LoginItemState::absent;
  const auto on = LoginItemState::on;
  const auto off = LoginItemState::switchedOff;
  const Case cases[] = {
      {undecided, true, absent, {"audio", "loginItem"}, false},
      {allowed, true, absent, {"audio!", "loginItem"}, false},
      {allowed, false, on, {"audio!", "loginItem!", "trayIcon"}, false},
      {allowed, std::nullopt, on, {"audio!", "loginItem!"}, false},  // may yet be hidden
      {undecided, true, on, {"audio", "loginItem!"}, false},
      {allowed, true, on, {"audio!", "loginItem!"}, true},
      {allowed, true, off, {"audio!", "loginItem"}, false},
  };
  for (const Case& each : cases) {
    World world;
    world.consent.setPreflight(each.consent);
    world.isTrayIconShown = each.tray;
    world.defaults.setBoolean("didRegisterLoginItem", true);  // once; it may be gone since
    world.loginItem.current = each.login;
    ASSERT_TRUE(world.setup.show());
    EXPECT_EQ(world.cards(), each.cards);
    EXPECT_EQ(world.page().isComplete, each.isComplete);
    EXPECT_EQ(world.isCompleted(), each.isComplete);
    for (const SetupCard& card : world.page().cards) {
      EXPECT_EQ(card.status == StepStatus::done, card.note.empty() && card.buttonTitle.empty())
          << card.id << " says what to do as long as there is something to do";
    }
  }
}

TEST(DesktopSetupTest, FollowsWhatHappensOutsideWhileItIsOpen) {
  World world;
  world.consent.setPreflight(undecided);
  world.isTrayIconShown = std::nullopt;
  world.setup.show();
  world.isTrayIconShown = false;
  world.consent.setPreflight(allowed);
  world.main.advance(0.39);
  EXPECT_THAT(world.cards(), ElementsAre("audio", "loginItem"));
  world.main.advance(0.02);
  EXPECT_THAT(world.cards(), ElementsAre("audio!", "loginItem", "trayIcon"));
  world.isTrayIconShown = true;
  world.consent.setPreflight(undecided);
  world.main.advance(0.4);
  EXPECT_THAT(world.cards(), ElementsAre("audio", "loginItem", "trayIcon!"))
      << "the server went away again, and a tray came";
  world.view->onFinish();
  world.main.advance(0.4);
  EXPECT_EQ(world.main.pendingTimers(), 0);
  EXPECT_TRUE(world.windows.windows().empty()) << "nothing of it is kept";
  EXPECT_FALSE(world.isCompleted());
}

TEST(DesktopSetupTest, EndsOnceEverythingIsSeen) {
  struct Case {
    bool startsAtLogin;
    bool hasTray;
  };
  for (const Case& each : {Case{true, true}, {true, false}, {false, true}, {false, false}}) {
    World world;
    world.isTrayIconShown = each.hasTray;
    world.setup.show();
    (each.startsAtLogin ? world.view->onButton : world.view->onSkip)("loginItem");
    EXPECT_EQ(world.loginItem.attempts, each.startsAtLogin ? 1 : 0);
    EXPECT_EQ(world.isCompleted(), each.hasTray);
    if (!each.hasTray) {
      world.view->onButton("trayIcon");
    }
    EXPECT_TRUE(world.isCompleted()) << "at once, so that no crash can undo it";
    ASSERT_TRUE(world.page().isComplete);
    EXPECT_EQ(world.page().title, "You're all set");
    EXPECT_THAT(world.page().completeLines.front(), HasSubstr(each.hasTray ? "tray" : "panel"));
    world.view->onShow();
    EXPECT_FALSE(world.setup.isShown());
    EXPECT_EQ(world.panels, 1);
  }
}

TEST(DesktopSetupTest, TriesALoginItemAgainAndAsksAnewWhenItIsOpenedAgain) {
  World world;
  world.setup.show();
  world.loginItem.failure = "the disk is full";
  world.view->onButton("loginItem");
  EXPECT_THAT(world.page().cards[1].note, HasSubstr("the disk is full"));
  EXPECT_EQ(world.defaults.boolean("didRegisterLoginItem"), std::nullopt);
  world.view->onSkip("loginItem");
  EXPECT_TRUE(world.isCompleted());

  world.windows.windows().front()->close();
  EXPECT_FALSE(world.setup.isShown());
  world.loginItem.failure.reset();
  world.setup.show();
  EXPECT_THAT(world.cards(), ElementsAre("audio!", "loginItem"));
  world.view->onButton("loginItem");
  EXPECT_EQ(world.defaults.boolean("didRegisterLoginItem"), true);
  EXPECT_EQ(world.defaults.boolean("didSkipLoginItem"), std::nullopt);
}

TEST(DesktopSetupTest, KeepsOneWindowWhichGrowsDownwardsAsFarAsTheScreenGoes) {
  World world;
  world.setup.show();
  world.setup.show();
  EXPECT_EQ(world.windows.made(), 1);
  EXPECT_EQ(world.application.activations, 2);
  StageWindow& window = *world.windows.windows().front();
  const Rect before = window.frame();
  EXPECT_EQ(before.height, 300);
  world.content->resize(420);
  EXPECT_EQ(window.frame().height, 420);
  EXPECT_EQ(window.frame().maxY(), before.maxY());

  world.content->resize(700);
  EXPECT_EQ(window.frame(), (Rect{before.x, 20, before.width, 700})) << "the screen ends below";
  world.content->resize(2000);
  EXPECT_EQ(window.frame(), (Rect{before.x, 20, before.width, 876 - 2 * 20})) << "it scrolls";
  window.setFrame({100, -200, before.width, 400});
  world.content->resize(500);
  EXPECT_EQ(window.frame(), (Rect{100, -200, before.width, 500})) << "the user has put it there";

  World broken;
  broken.content.reset();
  EXPECT_FALSE(broken.setup.show());
  EXPECT_EQ(broken.main.pendingTimers(), 0);
}

}  // namespace
}  // namespace plemora
