#include "controlcenter/control_center_locator.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <variant>

#include "controlcenter/accessibility_helpers.h"
#include "controlcenter/mixer_control.h"
#include "platform/preferences.h"
#include "platform/screens.h"
#include "platform/window_list.h"
#include "platform/workspace.h"

namespace plemora {

namespace {

constexpr const char* ownerName = "Control Center";
constexpr const char* menuItemIdentifier = "com.apple.menuextra.controlcenter";

// Points.
constexpr double topEdge = 1;        // a window above this reaches the top of the display
constexpr double edgeTolerance = 1;  // by which a full-size window may miss the display's size
constexpr double panelMinHeight = 200;
constexpr double iconMaxHeight = 40;
constexpr double iconMaxWidth = 60;
constexpr double iconMaxDistance = 30;  // of an item from where the preferences want it
constexpr double usualPosition = 182;   // of the item, from the display's right edge

constexpr const char* positionKeys[] = {"NSStatusItem Preferred Position BentoBox-0",
                                        "NSStatusItem Preferred Position BentoBox"};

/// Whether it may be an item in the menu bar, by where it is and by its height.
bool isInMenuBar(const Rect& window) {
  return window.minY() < topEdge && window.height <= iconMaxHeight;
}

Rect withYUp(const Rect& window, const Screen& main) {
  return {window.minX(), main.frame.maxY() - window.maxY(), window.width, window.height};
}

AccessibilityElementPointer extrasMenuBar(AccessibilityElement& application) {
  const auto value = application.attribute("AXExtrasMenuBar");
  const auto* held = value ? std::get_if<AccessibilityElementPointer>(&*value) : nullptr;
  return held != nullptr ? *held : nullptr;
}

bool isMenuItem(AccessibilityElement& element) {
  return accessibility::string(element, "AXIdentifier") == menuItemIdentifier;
}

AccessibilityElementPointer menuItemOf(AccessibilityElement& application) {
  const auto bar = extrasMenuBar(application);
  if (!bar) {
    return nullptr;
  }
  for (auto& child : accessibility::elements(*bar, "AXChildren")) {
    if (isMenuItem(*child)) {
      return child;
    }
    for (auto& grandchild : accessibility::elements(*child, "AXChildren")) {
      if (isMenuItem(*grandchild)) {
        return grandchild;
      }
    }
  }
  return nullptr;
}

}  // namespace

ControlCenterLocator::ControlCenterLocator(Screens& screens, WindowList& windowList,
                                           Accessibility& accessibility, Preferences& preferences,
                                           Workspace& workspace)
    : screens_(screens),
      windowList_(windowList),
      accessibility_(accessibility),
      preferences_(preferences),
      workspace_(workspace) {}

const Screen* ControlCenterLocator::mainScreen() const {
  const auto& screens = screens_.screens().get();
  return screens.empty() ? nullptr : &screens.front();
}

std::vector<ControlCenterWindow> ControlCenterLocator::controlCenterWindows() const {
  std::vector<ControlCenterWindow> found;
  for (const WindowInfo& window : windowList_.onScreenWindows()) {
    if (window.ownerName == ownerName && window.layer && window.bounds && window.alpha) {
      found.push_back({*window.bounds, *window.layer, *window.alpha});
    }
  }
  return found;
}

std::vector<Rect> ControlCenterLocator::windows(int layer) const {
  std::vector<Rect> found;
  for (const ControlCenterWindow& window : controlCenterWindows()) {
    if (window.layer == layer) {
      found.push_back(window.rect);
    }
  }
  return found;
}

ControlCenterLocator::Glance ControlCenterLocator::glance() const {
  const Screen* main = mainScreen();
  Glance seen;
  if (main == nullptr) {
    return seen;
  }
  for (const ControlCenterWindow& window : controlCenterWindows()) {
    // Edit mode's windows are as wide as the display.
    const bool isFullWidth = window.rect.width >= main->frame.width - edgeTolerance;
    const bool isNarrow = window.rect.width < main->frame.width - edgeTolerance;  // no NaN is
    if (isFullWidth && window.rect.height >= main->frame.height - edgeTolerance) {
      seen.isEditing = true;
    }
    if (!seen.panel && isNarrow && window.layer != statusWindowLevel &&
        window.rect.minY() < topEdge && window.rect.height > panelMinHeight) {
      seen.panel = window;
    }
  }
  return seen;
}

std::optional<ControlCenterWindow> ControlCenterLocator::panelWindow() const {
  return glance().panel;
}

bool ControlCenterLocator::isEditing() const {
  return glance().isEditing;
}

AccessibilityElementPointer ControlCenterLocator::menuItem() const {
  for (const RunningApplication& application : workspace_.runningApplications()) {
    if (application.bundleID != domain) {
      continue;
    }
    if (auto item = menuItemOf(*accessibility_.application(application.pid))) {
      return item;
    }
  }
  return nullptr;
}

std::optional<Rect> ControlCenterLocator::iconFrameFromAccessibility() const {
  const Screen* main = mainScreen();
  const auto item = main != nullptr ? menuItem() : nullptr;
  const auto frame = item ? accessibility::frame(*item) : std::nullopt;
  if (!frame) {
    return std::nullopt;
  }
  for (const Rect& window : windows(statusWindowLevel)) {
    if (isInMenuBar(window) && window.minX() <= frame->midX() && frame->midX() <= window.maxX()) {
      return withYUp(window, *main);
    }
  }
  return std::nullopt;
}

double ControlCenterLocator::preferredPosition() const {
  preferences_.appSynchronize(domain);
  for (const char* key : positionKeys) {
    const auto value = preferences_.appValue(key, domain);
    if (!value) {
      continue;
    }
    if (const auto* integer = std::get_if<std::int64_t>(&*value)) {
      return static_cast<double>(*integer);
    }
    if (const auto* real = std::get_if<double>(&*value)) {
      return *real;
    }
  }
  return usualPosition;
}

std::optional<Rect> ControlCenterLocator::iconFrame() const {
  if (const auto frame = iconFrameFromAccessibility()) {
    return frame;
  }
  const Screen* main = mainScreen();
  if (main == nullptr) {
    return std::nullopt;
  }
  const double expected = main->frame.maxX() - preferredPosition();
  std::optional<Rect> nearest;
  double distance = std::numeric_limits<double>::infinity();
  for (const Rect& window : windows(statusWindowLevel)) {
    const double off = std::abs(window.maxX() - expected);
    if (isInMenuBar(window) && window.width < iconMaxWidth && off < distance) {
      nearest = window;
      distance = off;
    }
  }
  return distance < iconMaxDistance ? std::optional(withYUp(*nearest, *main)) : std::nullopt;
}

bool ControlCenterLocator::isMixerControlAdded() const {
  preferences_.appSynchronize(domain);
  const auto value = preferences_.appValue(controlsKey, domain);
  const auto* data = value ? std::get_if<PreferenceData>(&*value) : nullptr;
  if (data == nullptr) {
    return false;
  }
  using Json = nlohmann::json;
  const Json root = Json::parse(data->bytes, nullptr, false);
  const auto controls = root.find("Controls");  // finds nothing in what is no dictionary
  if (controls == root.end() || !controls->is_array() ||
      !std::ranges::all_of(*controls, [](const Json& control) { return control.is_object(); })) {
    return false;
  }
  return std::ranges::any_of(*controls, [](const Json& control) {
    const auto identity = control.find("ControlIdentity");
    return identity != control.end() && identity->is_string() &&
           isMixerControlIdentity(identity->get_ref<const std::string&>());
  });
}

}  // namespace plemora
