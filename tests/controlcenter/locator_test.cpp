#include <gmock/gmock.h>

#include <optional>
#include <string>
#include <vector>

#include "base/base64.h"
#include "controlcenter/accessibility_helpers.h"
#include "controlcenter/control_center_world.h"

namespace plemora {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using World = ControlCenterWorld;
using ElementID = ScriptedAccessibility::ElementID;

constexpr const char* domain = "com.apple.controlcenter";
constexpr const char* identifier = "com.apple.menuextra.controlcenter";

TEST(LocatorTest, ListsControlCentersWindowsOfWhichEverythingIsKnown) {
  World world;
  EXPECT_THAT(world.locator.controlCenterWindows(), IsEmpty());

  const WindowInfo whole = World::window({10, 20, 30, 40}, 26, 0);
  const WindowInfo second = World::window({1, 2, 3, 4}, 25, 0.5);
  std::vector<WindowInfo> all = {whole};
  for (const char* name : {"Control Centre", "control center", "Control Center ", "Plemora", ""}) {
    all.push_back(whole);
    all.back().ownerName = name;
  }
  all.resize(all.size() + 4, whole);
  all[all.size() - 4].ownerName.reset();
  all[all.size() - 3].layer.reset();
  all[all.size() - 2].bounds.reset();
  all[all.size() - 1].alpha.reset();
  all.push_back(second);
  world.windowList.windows = all;
  EXPECT_THAT(world.locator.controlCenterWindows(),
              ElementsAre(ControlCenterWindow{{10, 20, 30, 40}, 26, 0},
                          ControlCenterWindow{{1, 2, 3, 4}, 25, 0.5}));
  EXPECT_THAT(world.locator.windows(25), ElementsAre(Rect{1, 2, 3, 4}));
  EXPECT_THAT(world.locator.windows(26), ElementsAre(Rect{10, 20, 30, 40}));
  EXPECT_THAT(world.locator.windows(0), IsEmpty());
  world.windowList.isSilent = true;
  EXPECT_THAT(world.locator.controlCenterWindows(), IsEmpty());
}

TEST(LocatorTest, ThePanelReachesTheTopAndIsHighAndNotAsWideAsTheDisplay) {
  struct Case {
    Rect rect;
    int layer;
    bool isPanel;
  };
  for (const Case& each : std::vector<Case>{
           {{1050, 0, 340, 600}, 26, true},
           {{1050, 0, 340, 600}, 0, true},
           {{1050, 0, 340, 600}, 25, false},  // an item of the menu bar
           {{1050, 0.99, 340, 600}, 26, true},
           {{1050, 1, 340, 600}, 26, false},
           {{1050, -300, 340, 600}, 26, true},
           {{1050, 0, 340, 200}, 26, false},
           {{1050, 0, 340, 200.5}, 26, true},
           {{0, 0, 1438.9, 600}, 26, true},
           {{0, 0, 1439, 600}, 26, false},
           {{0, 0, 1440, 900}, 26, false},
       }) {
    World world;
    world.windowList.windows = {World::window(each.rect, each.layer, 0.25)};
    const auto expected = each.isPanel
                              ? std::optional(ControlCenterWindow{each.rect, each.layer, 0.25})
                              : std::nullopt;
    EXPECT_EQ(world.locator.panelWindow(), expected)
        << each.rect.y << " " << each.rect.width << "x" << each.rect.height << " " << each.layer;
  }
}

TEST(LocatorTest, ThePanelIsTheFrontmostOfSeveral) {
  World world;
  world.windowList.windows = {World::window({0, 0, 1440, 900}, 26),
                              World::window({5, 0, 300, 250}, 26),
                              World::window({5, 0, 400, 800}, 30)};
  ASSERT_TRUE(world.locator.panelWindow());
  EXPECT_EQ(world.locator.panelWindow()->rect, (Rect{5, 0, 300, 250}));
}

TEST(LocatorTest, EditModeCoversTheMainDisplay) {
  struct Case {
    Rect rect;
    bool isEditing;
  };
  for (const Case& each : std::vector<Case>{
           {{0, 0, 1440, 900}, true},
           {{0, 0, 1439, 899}, true},
           {{0, 0, 1438.9, 900}, false},
           {{0, 0, 1440, 898.9}, false},
           {{0, 0, 2000, 1000}, true},
           {{1050, 0, 340, 600}, false},
       }) {
    for (const int layer : {0, 25, 26}) {
      World world;
      // The panel is in front of what covers the display.
      world.windowList.windows = {World::window({1050, 0, 340, 600}, 26),
                                  World::window(each.rect, layer)};
      EXPECT_EQ(world.locator.isEditing(), each.isEditing)
          << each.rect.width << "x" << each.rect.height << " " << layer;
    }
  }
}

TEST(LocatorTest, TheFirstScreenIsTheMeasure) {
  World world;
  world.screens.set({Screen{1, {0, 0, 1000, 700}, {0, 0, 1000, 676}, 2, 120},
                     Screen{2, {1000, 0, 2560, 1440}, {1000, 0, 2560, 1440}, 1, 60}});
  world.windowList.windows = {World::window({0, 0, 1100, 700}, 26)};
  EXPECT_TRUE(world.locator.isEditing());
  EXPECT_EQ(world.locator.panelWindow(), std::nullopt);
  world.windowList.windows = {World::icon(800)};
  EXPECT_EQ(world.locator.iconFrame(), (Rect{800, 676, 30, 24})) << "700 - 24, and 1000 - 182";
}

TEST(LocatorTest, WithoutAScreenThereIsNothing) {
  World world;
  world.launch();
  world.accessibility.setFrame(world.addMenuItem(), {1230, 0, 30, 24});
  world.windowList.windows = {World::icon(1228), World::window({1050, 0, 340, 600}, 26),
                              World::window({0, 0, 1440, 900}, 26)};
  EXPECT_TRUE(world.locator.panelWindow() && world.locator.iconFrame() &&
              world.locator.iconFrameFromAccessibility() && world.locator.isEditing());
  world.screens.set({});
  EXPECT_EQ(world.locator.panelWindow(), std::nullopt);
  EXPECT_EQ(world.locator.iconFrame(), std::nullopt);
  EXPECT_EQ(world.locator.iconFrameFromAccessibility(), std::nullopt);
  EXPECT_FALSE(world.locator.isEditing());
  EXPECT_EQ(world.locator.controlCenterWindows().size(), 3U);
}

// What the menu bar item is, by the "mark" of the element that is found.
std::optional<std::string> foundMark(World& world) {
  const auto item = world.locator.menuItem();
  return item ? accessibility::string(*item, "mark").value_or("?") : std::optional<std::string>();
}

TEST(LocatorTest, TheMenuItemIsAnExtraOrAChildOfOne) {
  World world;
  ScriptedAccessibility& accessibility = world.accessibility;
  EXPECT_EQ(foundMark(world), std::nullopt) << "Control Center does not run";
  world.launch(200, "com.apple.controlcenter.helper");
  world.launch();
  EXPECT_EQ(foundMark(world), std::nullopt) << "it has no extras";
  const ElementID root = accessibility.root(World::pid);
  const ElementID bar = accessibility.make();
  accessibility.set(root, "AXExtrasMenuBar", "no element");
  EXPECT_EQ(foundMark(world), std::nullopt);
  accessibility.set(root, "AXExtrasMenuBar", bar);
  EXPECT_EQ(foundMark(world), std::nullopt) << "it has no children";

  const auto add = [&](ElementID parent, const std::string& mark) {
    return accessibility.add(parent, "AXChildren", {{"mark", mark}});
  };
  add(bar, "no identifier");
  const ElementID other = add(bar, "other");
  accessibility.set(other, "AXIdentifier", "com.apple.menuextra.clock");
  const ElementID child = add(other, "child");
  const ElementID grandchild = add(child, "grandchild");
  accessibility.set(grandchild, "AXIdentifier", identifier);
  EXPECT_EQ(foundMark(world), std::nullopt) << "that is too deep";

  const ElementID last = add(bar, "last");
  accessibility.set(last, "AXIdentifier", identifier);
  EXPECT_EQ(foundMark(world), "last");
  accessibility.set(child, "AXIdentifier", identifier);
  EXPECT_EQ(foundMark(world), "child") << "an extra's children come before the next extra";
  accessibility.set(other, "AXIdentifier", identifier);
  EXPECT_EQ(foundMark(world), "other");

  accessibility.setTrusted(false);
  EXPECT_EQ(foundMark(world), std::nullopt);
}

TEST(LocatorTest, TheMenuItemMayBelongToASecondProcess) {
  World world;
  world.launch(100);
  world.launch();
  world.accessibility.set(world.addMenuItem(), "mark", "of the second");
  EXPECT_EQ(foundMark(world), "of the second");
}

TEST(LocatorTest, TheIconsWindowIsThatAroundTheMiddleOfTheItem) {
  struct Case {
    Rect window;
    int layer;
    bool isIcon;
  };
  // The middle of the item is at 1245.
  for (const Case& each : std::vector<Case>{
           {{1230, 0, 30, 24}, 25, true},
           {{1245, 0, 30, 24}, 25, true},
           {{1245.1, 0, 30, 24}, 25, false},
           {{1215, 0, 30, 24}, 25, true},
           {{1214.9, 0, 30, 24}, 25, false},
           {{1230, 0, 30, 24}, 26, false},
           {{1230, 0, 30, 40}, 25, true},
           {{1230, 0, 30, 40.1}, 25, false},
           {{1230, 0.99, 30, 24}, 25, true},
           {{1230, 1, 30, 24}, 25, false},
           {{1200, 0, 200, 24}, 25, true},  // however wide
       }) {
    World world;
    world.launch();
    world.accessibility.setFrame(world.addMenuItem(), {1235, 3, 20, 18});
    world.windowList.windows = {World::icon(0), World::window(each.window, each.layer),
                                World::icon(1240)};
    const Rect expected = each.isIcon ? each.window : Rect{1240, 0, 30, 24};
    EXPECT_EQ(world.locator.iconFrameFromAccessibility(),
              (Rect{expected.x, 900 - expected.maxY(), expected.width, expected.height}))
        << each.window.x << " " << each.window.y << " " << each.window.height;
  }
}

TEST(LocatorTest, AccessibilityComesBeforePreferences) {
  World world;
  world.launch();
  world.windowList.windows = {World::icon(600), World::icon(1228)};
  EXPECT_EQ(world.locator.iconFrameFromAccessibility(), std::nullopt);
  const Rect byPreferences{1228, 876, 30, 24};
  EXPECT_EQ(world.locator.iconFrame(), byPreferences);

  const ElementID item = world.addMenuItem();
  EXPECT_EQ(world.locator.iconFrame(), byPreferences) << "the item has no frame";
  world.accessibility.setFrame(item, {605, 0, 20, 24});
  EXPECT_EQ(world.locator.iconFrame(), (Rect{600, 876, 30, 24}));
  world.accessibility.setTrusted(false);
  EXPECT_EQ(world.locator.iconFrame(), byPreferences);
  world.accessibility.setTrusted(true);
  world.accessibility.setFrame(item, {900, 0, 20, 24});
  EXPECT_EQ(world.locator.iconFrame(), byPreferences) << "no window is there";
}

TEST(LocatorTest, PreferencesSayWhereTheRightEdgeOfTheIconIs) {
  constexpr const char* first = "NSStatusItem Preferred Position BentoBox-0";
  constexpr const char* second = "NSStatusItem Preferred Position BentoBox";
  struct Case {
    std::vector<std::pair<std::string, PreferenceValue>> values;
    double rightEdge;
  };
  for (const Case& each : std::vector<Case>{
           {{}, 1258},
           {{{first, 100.5}}, 1339.5},
           {{{second, 200.0}}, 1240},
           {{{second, 200.0}, {first, 100.5}}, 1339.5},
           {{{first, std::int64_t{300}}}, 1140},
           {{{first, 0.0}}, 1440},
           {{{first, std::int64_t{0}}, {second, 200.0}}, 1440},
           {{{first, "100"}, {second, 200.0}}, 1240},
           {{{first, "100"}}, 1258},
           {{{first, true}}, 1258},
           {{{"NSStatusItem Preferred Position BentoBox-1", 50.0}}, 1258},
       }) {
    World world;
    for (const auto& [key, value] : each.values) {
      world.store(key, value);
    }
    // Its neighbours would do as well if the position were a little off.
    const Rect exact{each.rightEdge - 30, 0, 30, 24};
    world.windowList.windows = {World::icon(exact.x - 1), World::window(exact, 25),
                                World::icon(exact.x + 1)};
    EXPECT_EQ(world.locator.iconFrame(), (Rect{exact.x, 876, 30, 24})) << each.rightEdge;
  }
}

TEST(LocatorTest, ThePositionIsThatOfTheMomentAndOfThisMachineFirst) {
  World world;
  constexpr const char* key = "NSStatusItem Preferred Position BentoBox-0";
  world.windowList.windows = {World::icon(1228), World::icon(1028)};
  world.store(key, 182.0);
  EXPECT_EQ(world.locator.iconFrame()->x, 1228);
  world.store(key, 382.0);
  EXPECT_EQ(world.locator.iconFrame()->x, 1028);
  world.stored->values(domain, PreferenceHost::current)[key] = 182.0;
  EXPECT_EQ(world.locator.iconFrame()->x, 1228);
}

TEST(LocatorTest, TheIconByPreferencesIsTheNearestOfThoseThatMayBeIt) {
  // Expected right edge: 1258.
  struct Case {
    std::vector<WindowInfo> windows;
    std::optional<double> x;
  };
  for (const Case& each : std::vector<Case>{
           {{}, std::nullopt},
           {{World::icon(1228 + 29.9)}, 1228 + 29.9},
           {{World::icon(1228 - 29.9)}, 1228 - 29.9},
           {{World::icon(1228 + 30)}, std::nullopt},
           {{World::icon(1228 - 30)}, std::nullopt},
           {{World::icon(1233), World::icon(1226), World::icon(1225)}, 1226},
           {{World::icon(1233), World::icon(1223)}, 1233},  // as near as the other, and earlier
           {{World::icon(1223), World::icon(1233)}, 1223},
           {{World::icon(1198.1, 59.9)}, 1198.1},
           {{World::icon(1198, 60)}, std::nullopt},
           {{World::window({1228, 0, 30, 40}, 25)}, 1228},
           {{World::window({1228, 0, 30, 40.1}, 25)}, std::nullopt},
           {{World::window({1228, 0.99, 30, 24}, 25)}, 1228},
           {{World::window({1228, 1, 30, 24}, 25)}, std::nullopt},
           {{World::window({1228, 0, 30, 24}, 26)}, std::nullopt},
           {{World::window({1228, 0, 30, 24}, 26), World::icon(1240)}, 1240},
       }) {
    World world;
    world.windowList.windows = each.windows;
    const auto frame = world.locator.iconFrame();
    EXPECT_EQ(frame ? std::optional(frame->x) : std::nullopt, each.x);
    if (frame) {
      const Rect& found = *each.windows.back().bounds;
      EXPECT_EQ(frame->y, each.windows.size() == 1 ? 900 - found.maxY() : 876);
    }
  }
}

std::string identity(const std::string& inside) {
  return "\"" + encodeBase64("bplist00" + inside + std::string("\0\xff tail", 7)) + "\"";
}

TEST(LocatorTest, TheMixersControlIsToldByTheExtensionInsideItsIdentity) {
  const std::string ours = identity("..com.quorvane.mixer.controls..");
  const std::string foreign = identity("com.quorvane.mixer");
  struct Case {
    std::string json;
    bool isAdded;
  };
  for (const Case& each : std::vector<Case>{
           {R"({"Controls":[{"ControlIdentity":)" + ours + "}]}", true},
           {R"({"Controls":[{},{"ControlIdentity":)" + foreign + R"(},{"ControlIdentity":)" + ours +
                "}]}",
            true},
           {R"({"Controls":[{"ControlIdentity":)" + foreign + "}]}", false},
           {R"({"Controls":[{"ControlIdentity":"com.quorvane.mixer.controls"}]})", false},
           {R"({"Controls":[1,{"ControlIdentity":)" + ours + "}]}", false},
           {R"([{"ControlIdentity":)" + ours + "}]", false},
           {R"({"Controls":[{"ControlIdentity":)" + ours + "}]", false},  // cut
           {"", false},
       }) {
    World world;
    world.store("ControlCenterDisplayableChronoControlsProviderConfiguration",
                PreferenceData{each.json});
    EXPECT_EQ(world.locator.isMixerControlAdded(), each.isAdded) << each.json;
    world.store("ControlCenterDisplayableChronoControlsProviderConfiguration", each.json);
    EXPECT_FALSE(world.locator.isMixerControlAdded()) << "text is not data";
  }
  World world;
  EXPECT_FALSE(world.locator.isMixerControlAdded());
}

}  // namespace
}  // namespace plemora
