#include "controlcenter/control_center_primer.h"

#include <algorithm>
#include <chrono>
#include <optional>
#include <utility>

#include "controlcenter/accessibility_helpers.h"
#include "controlcenter/control_center_locator.h"
#include "platform/clock.h"
#include "platform/workspace.h"

namespace plemora {

namespace {

constexpr const char* pressAction = "AXPress";
constexpr double highestButton = -1.0;  // y down; a button must be below it

/// Finds the lowest button without an identifier in a tree.
class ButtonSearch {
 public:
  void visit(const AccessibilityElementPointer& element, int depth) {
    if (depth > ControlCenterPrimer::walkDepth) {
      return;
    }
    if (isCandidate(*element)) {
      const auto frame = accessibility::frame(*element);
      if (frame && frame->minY() > lowest_) {
        lowest_ = frame->minY();
        found_ = element;
      }
    }
    for (const auto& child : accessibility::elements(*element, "AXChildren")) {
      visit(child, depth + 1);
    }
  }

  AccessibilityElementPointer found() const { return found_; }

 private:
  static bool isCandidate(AccessibilityElement& element) {
    return accessibility::string(element, "AXRole") == "AXButton" &&
           accessibility::string(element, "AXIdentifier").value_or("").empty();
  }

  AccessibilityElementPointer found_;
  double lowest_ = highestButton;
};

}  // namespace

struct ControlCenterPrimer::Wait {
  WallTime start;
  double timeout;
  std::function<void(bool)> then;
  std::function<bool()> check;
};

ControlCenterPrimer::ControlCenterPrimer(const ControlCenterLocator& locator,
                                         Accessibility& accessibility, Workspace& workspace,
                                         MainQueue& queue, Clock& clock)
    : locator_(locator),
      accessibility_(accessibility),
      workspace_(workspace),
      clock_(clock),
      steps_(queue) {}

void ControlCenterPrimer::prime(Done done, Absence absence) {
  waiting_.push_back(std::move(done));
  if (waiting_.size() > 1) {
    return;
  }
  if (!accessibility_.isTrusted() || (absence == Absence::final && !control())) {
    finish(false);
    return;
  }
  // Control Center may have been started a moment ago, or may be started anew meanwhile.
  waitUntil(
      itemTimeout, [this](bool isThere) { isThere ? openPanel() : finish(false); },
      [this] { return locator_.menuItem() != nullptr; });
}

void ControlCenterPrimer::openPanel() {
  // A panel that stands open, as a run that was killed leaves it, would be closed by a press.
  if (!locator_.panelWindow()) {
    pressMenuItem();
  }
  waitUntil(
      panelTimeout, [this](bool isOpen) { isOpen ? enterEditMode() : finish(false); },
      [this] { return locator_.panelWindow().has_value(); });
}

void ControlCenterPrimer::enterEditMode() {
  const auto button = editButton();
  if (!button) {
    giveUp();
    return;
  }
  button->perform(pressAction);
  waitUntil(
      editTimeout, [this, button](bool isEditing) { isEditing ? leaveEditMode(button) : giveUp(); },
      [this] { return locator_.isEditing(); });
}

void ControlCenterPrimer::leaveEditMode(const AccessibilityElementPointer& button) {
  const bool isLeaving = !locator_.isEditing() || button->perform(pressAction);
  steps_.after(leaveDelay, [this, isLeaving] {
    steps_.after(closeDelay, [this, isLeaving] {
      // A press that was reported as failed may have been one all the same.
      const bool hasLeft = isLeaving || !locator_.isEditing();
      pressMenuItem();
      finish(hasLeft);
    });
  });
}

// The panel was opened for nothing, and the user is not to be left with it.
void ControlCenterPrimer::giveUp() {
  if (locator_.panelWindow()) {
    pressMenuItem();
  }
  finish(false);
}

void ControlCenterPrimer::finish(bool succeeded) {
  steps_.after(succeeded ? settleDelay : 0, [this, succeeded] {
    for (const Done& done : std::exchange(waiting_, {})) {
      done(succeeded);
    }
  });
}

void ControlCenterPrimer::pressMenuItem() {
  if (const auto item = locator_.menuItem()) {
    item->perform(pressAction);
  }
}

void ControlCenterPrimer::waitUntil(double timeout, std::function<void(bool)> then,
                                    std::function<bool()> check) {
  poll(std::make_shared<Wait>(Wait{clock_.now(), timeout, std::move(then), std::move(check)}));
}

void ControlCenterPrimer::poll(const std::shared_ptr<Wait>& wait) {
  const bool result = wait->check();
  const std::chrono::duration<double> passed = clock_.now() - wait->start;
  if (result || passed.count() >= wait->timeout) {
    wait->then(result);
    return;
  }
  // The last check falls on the deadline.
  steps_.after(std::min(pollInterval, wait->timeout - passed.count()),
               [this, wait] { poll(wait); });
}

AccessibilityElementPointer ControlCenterPrimer::control() const {
  const auto applications = workspace_.runningApplications();
  const auto found = std::ranges::find_if(applications, [](const auto& application) {
    return application.bundleID == ControlCenterLocator::domain;
  });
  return found == applications.end() ? nullptr : accessibility_.application(found->pid);
}

AccessibilityElementPointer ControlCenterPrimer::editButton() const {
  const auto application = control();
  if (!application) {
    return nullptr;
  }
  ButtonSearch search;
  for (const auto& window : accessibility::elements(*application, "AXWindows")) {
    search.visit(window, 0);
  }
  return search.found();
}

}  // namespace plemora
