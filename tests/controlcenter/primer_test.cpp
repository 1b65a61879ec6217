#include <gmock/gmock.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "controlcenter/accessibility_helpers.h"
#include "controlcenter/control_center_primer.h"
#include "controlcenter/control_center_world.h"
#include "support/obedient_control_center.h"

namespace plemora {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using ElementID = ScriptedAccessibility::ElementID;
using Absence = ControlCenterPrimer::Absence;

/// Writes down who presses what when, and what comes of it.
struct PrimerWorld : ControlCenterWorld {
  ObedientControlCenter center{main, workspace, accessibility, windowList};
  std::vector<std::string> log;
  std::optional<ControlCenterPrimer> primer;

  PrimerWorld() {
    center.pressed = [this](const std::string& what) { note(what); };
    primer.emplace(locator, accessibility, workspace, main, clock);
  }

  void launchWithItem() {
    center.launch();
    center.appear();
  }

  void note(const std::string& what) {
    char text[40];
    std::snprintf(text, sizeof text, "%.2f %s", clock.mediaTime(), what.c_str());
    log.emplace_back(text);
  }

  void prime(Absence absence = Absence::final) {
    primer->prime([this](bool succeeded) { note(succeeded ? "done" : "failed"); }, absence);
  }

  /// Whether it succeeded; none while it has not been told.
  std::optional<bool> result() const {
    std::optional<bool> found;
    for (const std::string& line : log) {
      if (line.ends_with("done") || line.ends_with("failed")) {
        EXPECT_EQ(found, std::nullopt) << "told twice";
        found = line.ends_with("done");
      }
    }
    return found;
  }
};

TEST(PrimerTest, OpensEditsLeavesAndClosesInItsOwnTime) {
  PrimerWorld world;
  world.launchWithItem();
  world.center.openDelay = 0.32;
  world.center.editDelay = 0.61;
  world.prime();
  world.main.advance(20);
  EXPECT_THAT(world.log,
              ElementsAre("0.00 item", "0.35 edit", "1.00 edit", "2.30 item", "3.50 done"));
  EXPECT_FALSE(world.center.isOpen || world.center.isEditing);
  EXPECT_EQ(world.main.pendingTimers(), 0);

  world.prime();
  world.main.advance(20);
  EXPECT_EQ(world.log.size(), 10U) << "and again";
}

TEST(PrimerTest, WaitsForEachStepAsLongAsItMayAndNoLonger) {
  struct Case {
    double itemDelay;
    double openDelay;
    double editDelay;
    std::optional<double> failsAt;  // none: succeeds
  };
  for (const Case& each : std::vector<Case>{
           {0, 1.9, 0, std::nullopt},
           {0, 2.1, 0, 2.05},  // the item is seen one poll late
           {0, 0, 2.9, std::nullopt},
           {0, 0, 3.1, 3.1},  // and so is the panel
           {5.9, 0, 0, std::nullopt},
           {6.1, 0, 0, 6.0},
           {5.9, 1.9, 2.9, std::nullopt},
       }) {
    PrimerWorld world;
    world.center.openDelay = each.openDelay;
    world.center.editDelay = each.editDelay;
    world.center.launch();
    const Timer appearing = world.main.after(each.itemDelay, [&] { world.center.appear(); });
    world.prime();
    const double failsAt = each.failsAt.value_or(0);
    if (each.failsAt) {
      world.main.advance(failsAt - 0.01);
      EXPECT_EQ(world.result(), std::nullopt) << failsAt;
      // A step of the poll later at the most.
      world.main.advance(0.01 + ControlCenterPrimer::pollInterval + 0.001);
      EXPECT_EQ(world.result(), false) << failsAt;
    }
    world.main.advance(30);
    EXPECT_EQ(world.result(), !each.failsAt)
        << each.itemDelay << " " << each.openDelay << " " << each.editDelay;
    EXPECT_EQ(world.main.pendingTimers(), 0);
  }
}

TEST(PrimerTest, AnswersAtOnceWhereNothingCanBeDoneButNeverFromInsideTheCall) {
  struct Case {
    bool isRunning;
    bool isTrusted;
    Absence absence;
  };
  for (const Case& each : std::vector<Case>{
           {false, true, Absence::final},
           {false, false, Absence::restarts},
           {true, false, Absence::final},
       }) {
    PrimerWorld world;
    if (each.isRunning) {
      world.launchWithItem();
    }
    world.accessibility.setTrusted(each.isTrusted);
    world.prime(each.absence);
    EXPECT_THAT(world.log, IsEmpty());
    world.main.advance(0);
    EXPECT_THAT(world.log, ElementsAre("0.00 failed"));
    world.main.advance(20);
    EXPECT_EQ(world.log.size(), 1U);
  }
}

TEST(PrimerTest, WaitsForAControlCenterThatWasEndedOnPurpose) {
  for (const bool comesBack : {false, true}) {
    PrimerWorld world;
    world.prime(Absence::restarts);
    world.main.advance(1);
    EXPECT_EQ(world.result(), std::nullopt);
    if (comesBack) {
      world.launchWithItem();
    }
    world.main.advance(20);
    EXPECT_EQ(world.result(), comesBack);
  }
}

TEST(PrimerTest, WaitsForAControlCenterThatIsStartedAnewMeanwhile) {
  PrimerWorld world;
  world.launch();
  world.prime();
  world.main.advance(0.5);
  world.center.quit();
  world.main.advance(1);
  EXPECT_EQ(world.result(), std::nullopt);
  world.launchWithItem();
  world.main.advance(20);
  EXPECT_EQ(world.result(), true);
}

TEST(PrimerTest, ClosesWhatItOpenedForNothing) {
  for (const bool hasButton : {false, true}) {
    PrimerWorld world;
    world.center.hasEditButton = hasButton;
    world.center.editDelay = 100;
    world.launchWithItem();
    world.prime();
    world.main.advance(20);
    EXPECT_EQ(world.result(), false);
    EXPECT_FALSE(world.center.isOpen);
    EXPECT_THAT(world.log.front(), "0.00 item");
    EXPECT_EQ(world.log.size(), hasButton ? 4U : 3U);
  }
}

TEST(PrimerTest, FailsOnceWhenTrustOrControlCenterGoesHalfWay) {
  for (const double moment : {0.1, 0.5, 0.97, 1.2, 1.8}) {
    for (const bool quits : {false, true}) {
      PrimerWorld world;
      world.center.openDelay = 0.32;
      world.center.editDelay = 0.61;
      world.launchWithItem();
      world.prime();
      world.main.advance(moment);
      if (quits) {
        world.center.quit();
      } else {
        world.accessibility.setTrusted(false);
      }
      world.main.advance(20);
      // Past the edit button nothing is left to be waited for.
      EXPECT_EQ(world.result(), moment > 1) << moment;
      EXPECT_EQ(world.main.pendingTimers(), 0);
    }
  }
}

TEST(PrimerTest, ASecondCallJoinsTheChainThatRuns) {
  PrimerWorld world;
  world.center.openDelay = 0.3;
  world.launchWithItem();
  std::vector<int> told;
  world.primer->prime([&](bool) { told.push_back(1); });
  world.main.advance(1);
  world.primer->prime([&](bool succeeded) {
    told.push_back(2);
    EXPECT_TRUE(succeeded);
    // The chain is over by now: this begins another.
    world.primer->prime([&](bool) { told.push_back(3); });
  });
  world.main.advance(2);
  EXPECT_THAT(told, ElementsAre(1, 2));
  EXPECT_EQ(world.log.size(), 5U) << "item, edit, edit, item; and the first of another chain";
  world.main.advance(20);
  EXPECT_THAT(told, ElementsAre(1, 2, 3));
  EXPECT_EQ(world.log.size(), 8U);
}

TEST(PrimerTest, NothingHappensOnceItIsGone) {
  for (const double moment : {0.0, 0.1, 1.2, 2.5}) {
    PrimerWorld world;
    world.center.openDelay = 0.3;
    world.launchWithItem();
    world.prime();
    world.main.advance(moment);
    world.center.timers.clear();
    world.primer.reset();
    const auto before = world.log;
    EXPECT_EQ(world.main.pendingTimers(), 0);
    world.main.advance(20);
    EXPECT_EQ(world.log, before);
  }
  PrimerWorld world;
  world.primer->prime([&](bool) { world.primer.reset(); });
  world.primer->prime([&](bool succeeded) { world.note(succeeded ? "done" : "failed"); });
  world.main.advance(20);
  EXPECT_THAT(world.log, ElementsAre("0.00 failed"));
}

TEST(PrimerTest, ChecksEveryTwentiethOfASecondByTheWallClock) {
  PrimerWorld world;
  std::vector<double> checks;
  std::vector<bool> results;
  const auto check = [&] {
    checks.push_back(world.clock.mediaTime());
    return checks.size() == 4;
  };
  world.primer->waitUntil(
      10, [&](bool result) { results.push_back(result); }, check);
  world.main.advance(20);
  ASSERT_EQ(checks.size(), 4U);
  for (std::size_t i = 0; i < checks.size(); ++i) {
    EXPECT_NEAR(checks[i], 0.05 * static_cast<double>(i), 1e-9);
  }
  EXPECT_THAT(results, ElementsAre(true));

  checks.clear();
  world.primer->waitUntil(
      10, [&](bool result) { results.push_back(result); },
      [&] {
        checks.push_back(world.clock.mediaTime());
        return false;
      });
  world.main.advance(0.12);
  EXPECT_EQ(checks.size(), 3U);
  world.clock.setNow(world.clock.now() + std::chrono::seconds(11));
  world.main.advance(20);
  EXPECT_EQ(checks.size(), 4U) << "it is later than it was allowed to get";
  EXPECT_THAT(results, ElementsAre(true, false));
}

struct Node {
  std::string mark;
  ScriptedAccessibility::Attributes attributes;
  std::optional<double> minY;
  std::vector<Node> children;
};

void plant(ScriptedAccessibility& accessibility, ElementID parent, const std::string& list,
           const Node& node) {
  const ElementID element = accessibility.add(parent, list, node.attributes);
  accessibility.set(element, "mark", node.mark);
  if (node.minY) {
    accessibility.setFrame(element, {0, *node.minY, 20, 20});
  }
  for (const Node& child : node.children) {
    plant(accessibility, element, "AXChildren", child);
  }
}

Node button(const std::string& mark, std::optional<double> minY, std::vector<Node> children = {}) {
  return {mark, {{"AXRole", "AXButton"}}, minY, std::move(children)};
}

/// A button below that many groups.
Node deepButton(const std::string& mark, int depth, double minY) {
  Node node = button(mark, minY);
  for (int i = 0; i < depth; ++i) {
    node = {"group", {{"AXRole", "AXGroup"}}, std::nullopt, {node}};
  }
  return node;
}

TEST(PrimerTest, TheEditButtonIsTheLowestWithoutAnIdentifier) {
  Node named = button("named", 500);
  named.attributes["AXIdentifier"] = "wifi";
  Node blank = button("blank", 300);
  blank.attributes["AXIdentifier"] = "";
  Node numbered = button("numbered", 320);
  numbered.attributes["AXIdentifier"] = 5.0;
  const Node checkBox = {"check box", {{"AXRole", "AXCheckBox"}}, 600, {}};

  struct Case {
    std::vector<Node> windows;
    std::optional<std::string> found;
  };
  for (const Case& each : std::vector<Case>{
           {{}, std::nullopt},
           {{button("window", 10)}, "window"},
           {{button("no frame", std::nullopt)}, std::nullopt},
           {{button("above", -1)}, std::nullopt},
           {{button("just below", -0.9)}, "just below"},
           {{button("upper", 10, {button("lower", 11)})}, "lower"},
           {{button("lower", 11, {button("upper", 10)})}, "lower"},
           {{button("parent", 10, {button("child", 10)})}, "parent"},
           {{button("first", 10), button("second", 10)}, "first"},
           {{button("first", 10), button("second", 12)}, "second"},
           {{named, button("plain", 10)}, "plain"},
           {{button("plain", 10), blank}, "blank"},
           {{numbered, blank}, "numbered"},
           {{checkBox, button("plain", 10)}, "plain"},
           {{deepButton("at 5", 5, 10)}, "at 5"},
           {{deepButton("at 6", 6, 10)}, std::nullopt},
           {{deepButton("at 5", 5, 10), deepButton("at 6", 6, 20), deepButton("at 1", 1, 9)},
            "at 5"},
           {{button("not a number", std::nan("")), button("plain", 10)}, "plain"},
       }) {
    PrimerWorld world;
    world.launch();
    for (const Node& window : each.windows) {
      plant(world.accessibility, world.accessibility.root(PrimerWorld::pid), "AXWindows", window);
    }
    const auto found = world.primer->editButton();
    EXPECT_EQ(found ? accessibility::string(*found, "mark") : std::nullopt, each.found);
  }
}

}  // namespace
}  // namespace plemora
