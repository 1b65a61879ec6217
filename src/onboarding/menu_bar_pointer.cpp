#include "onboarding/menu_bar_pointer.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "menubar/glass_panel.h"
#include "menubar/status_item_controller.h"
#include "menubar/window_animation.h"
#include "menubar/window_spring.h"
#include "onboarding/ripple_panel.h"
#include "platform/screens.h"
#include "platform/window_list.h"
#include "skin/look/control_center_look.h"

namespace plemora {

namespace {

constexpr const char* title = "Your new Sound menu";
constexpr const char* line = "App volumes, outputs and the master slider.";

constexpr double cornerRadius = 14;  // points
constexpr double gap = 10;           // below the icon
constexpr double margin = 8;         // to the edges of the visible frame
constexpr double rise = 14;
constexpr Size usualSize{280, 88};  // of a callout that does not know its own

constexpr double springDamping = 0.62;
constexpr double springResponse = 0.5;
constexpr double showTime = 9.0;  // seconds
constexpr double fadeOutTime = 0.2;
constexpr double releaseInterval = 0.05;

PanelWindowOptions calloutOptions() {
  PanelWindowOptions options;
  options.identifier = "menu-bar-callout";
  options.title = title;
  options.level = statusWindowLevel;
  options.collectionBehavior =
      windowCanJoinAllSpaces | windowStationary | windowIgnoresCycle | windowFullScreenAuxiliary;
  options.animationBehavior = 2;
  options.hasShadow = true;
  return options;
}

const Screen* screenOf(const std::vector<Screen>& screens, const Point& place) {
  const auto found = std::ranges::find_if(
      screens, [&](const Screen& screen) { return screen.frame.contains(place); });
  if (found != screens.end()) {
    return &*found;
  }
  return screens.empty() ? nullptr : &screens.front();
}

Rect calloutFrame(const Rect& below, const Size& size, const Screen* screen) {
  double x = below.midX() - size.width / 2;
  if (screen != nullptr) {
    const Rect& visible = screen->visibleFrame;
    x = std::min(std::max(x, visible.minX() + margin), visible.maxX() - size.width - margin);
  }
  return {x, below.minY() - gap - size.height, size.width, size.height};
}

}  // namespace

struct MenuBarPointer::Callout {
  CalloutView view;
  PanelVisibility visibility;
  std::shared_ptr<GlassPanel> panel;
  std::optional<VisibilityGate> gate;
  std::optional<WindowSpring> spring;  // none: it fades
  std::optional<WindowAnimation> fade;
};

MenuBarPointer::MenuBarPointer(const OnboardingServices& services, RipplePanel& ripple)
    : services_(services), ripple_(ripple) {}

MenuBarPointer::~MenuBarPointer() {
  if (isShown()) {
    ripple_.hide();
  }
  dropCallout();
}

void MenuBarPointer::show(const Rect& below, std::function<void()> onOpen) {
  hide();
  dropCallout();
  ripple_.show(below);
  showCallout(below, std::move(onOpen));

  InputEvents& input = services_.menuBar.inputEvents;
  monitors_.push_back(input.monitorGlobal(leftMouseDownMask, [this](const auto&) { hide(); }));
  monitors_.push_back(input.monitorLocal(leftMouseDownMask, [this](const auto&) {
    hide();
    return false;
  }));
  autoHide_ = services_.menuBar.mainQueue.after(showTime, [this] { hide(); });
}

void MenuBarPointer::showCallout(const Rect& below, std::function<void()> onOpen) {
  if (!services_.contents.makeCallout) {
    return;
  }
  auto callout = std::make_unique<Callout>();
  callout->view = {title, line, "Open", "arrow.up", [this, onOpen = std::move(onOpen)] {
                     // A copy, since the callout may go with what it opens.
                     const auto open = onOpen;
                     hide();
                     if (open) {
                       open();
                     }
                   }};
  const auto content = services_.contents.makeCallout(callout->view);
  if (!content) {
    return;
  }
  const MenuBarServices& desktop = services_.menuBar;
  callout->panel = std::make_shared<GlassPanel>(desktop.windows, calloutOptions(), content,
                                                callout->visibility, desktop.mainQueue);
  GlassPanel& panel = *callout->panel;
  panel.make(cornerRadius, GlassStyle(desktop.look.style("detailStyle", builtInDetail)));
  panel.setRim(
      std::make_unique<RimLayer>(StatusItemController::rimTop, StatusItemController::rimRest),
      cornerRadius, StatusItemController::rimZPosition);
  callout->gate.emplace(callout->visibility, content);
  callout->fade.emplace(callout->panel, desktop.displayLinks, desktop.clock);

  const auto known = [](double length, double usual) { return length > 0 ? length : usual; };
  const Size size{known(content->fittingWidth(), usualSize.width),
                  known(content->fittingHeight(), usualSize.height)};
  const Rect frame =
      calloutFrame(below, size, screenOf(desktop.screens.screens().get(), below.origin()));
  panel.setFrame(frame.offset(0, rise));
  panel.setAlpha(0);
  panel.orderFrontRegardless();
  callout->spring.emplace(callout->panel, desktop.displayLinks, desktop.clock);
  callout->spring->damping = springDamping;
  callout->spring->response = springResponse;
  callout->spring->animate(frame, 1);
  callout_ = std::move(callout);
}

void MenuBarPointer::hide() {
  if (!isShown()) {
    return;
  }
  monitors_.clear();
  autoHide_.reset();
  ripple_.hide();
  if (callout_) {
    callout_->spring.reset();
    callout_->fade->animateAlpha(0, fadeOutTime, [this] {
      // A press on its button counts once it is let go, which may be later.
      if ((services_.menuBar.inputEvents.pressedMouseButtons() & leftMouseButton) == 0) {
        dropCallout();
        return;
      }
      release_ = services_.menuBar.mainQueue.every(releaseInterval, [this] {
        if ((services_.menuBar.inputEvents.pressedMouseButtons() & leftMouseButton) == 0) {
          dropCallout();
        }
      });
    });
  }
}

void MenuBarPointer::dropCallout() {
  release_.reset();
  if (callout_) {
    callout_->panel->orderOut();
    callout_.reset();
  }
}

}  // namespace plemora
