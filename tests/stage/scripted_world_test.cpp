#include <gmock/gmock.h>

#include <algorithm>
#include <string>

#include "adapters/stage/scripted_accessibility.h"
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

}  // namespace
}  // namespace plemora
