#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <string>
#include <thread>

#include "adapters/stage/scripted_accessibility.h"
#include "adapters/stage/scripted_notifications.h"
#include "adapters/stage/scripted_window_list.h"
#include "support/accessibility_contract.h"
#include "support/window_list_contract.h"

namespace plemora {
namespace {

class ScriptedAccessibilityWorld : public AccessibilityWorld {
 public:
  ScriptedAccessibilityWorld() {
    using ElementID = ScriptedAccessibility::ElementID;
    const ElementID window =
        accessibility_.add(accessibility_.root(7), "AXWindows", {{"AXRole", "AXWindow"}});
    accessibility_.setFrame(window, {0, 0, 300, 200});
    const ElementID group = accessibility_.add(window, "AXChildren", {{"AXRole", "AXGroup"}});
    const ElementID button = accessibility_.add(
        group, "AXChildren", {{"AXRole", "AXButton"}, {"AXIdentifier", "the button"}});
    accessibility_.setFrame(button, {10, 10, 30, 30});
    accessibility_.setAction(button, "AXPress", [this] { ++presses_; });
  }

  Accessibility& accessibility() override { return accessibility_; }
  void setTrusted(bool isTrusted) override { accessibility_.setTrusted(isTrusted); }
  std::int32_t pid() override { return 7; }
  bool isButton(AccessibilityElement& element) override {
    return element.attribute("AXIdentifier") == AccessibilityValue("the button");
  }
  int presses() override { return presses_; }
  void endApplication() override { accessibility_.removeApplication(7); }

 private:
  ScriptedAccessibility accessibility_;
  int presses_ = 0;
};

INSTANTIATE_TEST_SUITE_P(Scripted, AccessibilityContract,
                         testing::Values(AccessibilityWorldFactory{
                             "scripted",
                             [] { return std::make_unique<ScriptedAccessibilityWorld>(); }}));

class ScriptedWindowListWorld : public WindowListWorld {
 public:
  WindowList& windowList() override { return list_; }
  std::int64_t show(int layer, const Rect& bounds, double alpha) override {
    const auto place = std::ranges::find_if(
        list_.windows, [layer](const WindowInfo& window) { return window.layer <= layer; });
    list_.windows.insert(place, {++last_, ownerPid(), ownerName(), layer, bounds, alpha});
    return last_;
  }
  void move(std::int64_t number, const Rect& bounds) override {
    std::ranges::find(list_.windows, number, &WindowInfo::number)->bounds = bounds;
  }
  void hide(std::int64_t number) override {
    std::erase_if(list_.windows, [number](const auto& each) { return each.number == number; });
  }
  void silence() override { list_.isSilent = true; }
  std::string ownerName() override { return "Some App"; }
  std::int32_t ownerPid() override { return 7; }

 private:
  ScriptedWindowList list_;
  std::int64_t last_ = 0;
};

INSTANTIATE_TEST_SUITE_P(Scripted, WindowListContract,
                         testing::Values(WindowListWorldFactory{
                             "scripted",
                             [] { return std::make_unique<ScriptedWindowListWorld>(); }}));

using testing::ElementsAre;

TEST(ScriptedAccessibilityTest, ElementsMayListEachOtherInCircles) {
  ScriptedAccessibility accessibility;
  const auto root = accessibility.root(1);
  const auto child = accessibility.add(root, "AXChildren");
  accessibility.set(child, "AXChildren", std::vector{root, child});
  accessibility.set(child, "AXParent", root);
  const auto value = accessibility.reference(child)->attribute("AXChildren");
  ASSERT_TRUE(value);
  EXPECT_EQ(std::get<std::vector<AccessibilityElementPointer>>(*value).size(), 2U);
  accessibility.removeApplication(1);
  EXPECT_EQ(accessibility.reference(child)->attribute("AXParent"), std::nullopt);
}

TEST(ScriptedAccessibilityTest, TheHookComesBeforeEveryReadAndMayChangeTheWorld) {
  ScriptedAccessibility accessibility;
  const auto root = accessibility.root(1);
  accessibility.set(root, "AXRole", "AXApplication");
  accessibility.setAction(root, "AXPress", [] {});
  std::vector<std::string> names;
  accessibility.setHook([&](const std::string& name) {
    names.push_back(name);
    accessibility.setTrusted(names.size() < 3);
  });
  const auto element = accessibility.application(1);
  EXPECT_NE(element->attribute("AXRole"), std::nullopt);
  EXPECT_TRUE(element->perform("AXPress"));
  EXPECT_EQ(element->attribute("AXRole"), std::nullopt);
  EXPECT_THAT(names, ElementsAre("AXRole", "AXPress", "AXRole"));
}

TEST(ScriptedAccessibilityTest, IsReadOnOneThreadWhileItChangesOnAnother) {
  ScriptedAccessibility accessibility;
  const auto root = accessibility.root(1);
  std::atomic<bool> isOver = false;
  std::atomic<int> seen = 0;
  std::thread reader([&] {
    const auto element = accessibility.application(1);
    do {
      const auto value = element->attribute("AXChildren");
      const auto* children =
          value ? std::get_if<std::vector<AccessibilityElementPointer>>(&*value) : nullptr;
      for (const auto& child :
           children != nullptr ? *children : std::vector<AccessibilityElementPointer>()) {
        child->attribute("AXRole");
        child->perform("AXPress");
        ++seen;
      }
    } while (!isOver || seen == 0);
  });
  for (int i = 0; i < 200; ++i) {
    const auto child = accessibility.add(root, "AXChildren", {{"AXRole", "AXButton"}});
    accessibility.setAction(child, "AXPress", [] {});
    accessibility.setTrusted(i % 7 != 0);
    if (i % 3 == 0) {
      accessibility.remove(child);
    }
  }
  isOver = true;
  reader.join();
  EXPECT_GT(seen, 0);
}

TEST(ScriptedNotificationsTest, EveryPostReachesEveryHandlerOfThatNameOnItsThread) {
  ScriptedNotifications notifications;
  std::vector<std::thread::id> threads;
  notifications.observe("one", [&] { threads.push_back(std::this_thread::get_id()); });
  notifications.observe("one", [&] { notifications.observe("three", [] {}); });
  notifications.observe("two", [&] { threads.clear(); });
  notifications.post("one");
  std::thread poster([&] { notifications.post("one"); });
  const auto other = poster.get_id();
  poster.join();
  EXPECT_THAT(threads, ElementsAre(std::this_thread::get_id(), other));
  notifications.post("nobody's");
  EXPECT_THAT(notifications.posted(), ElementsAre("one", "one", "nobody's"));
}

}  // namespace
}  // namespace plemora
