#include "onboarding/setup_window.h"

#include <algorithm>
#include <utility>

#include "onboarding/setup_page.h"
#include "platform/application.h"
#include "platform/screens.h"

namespace plemora {

namespace {

constexpr int underWindowBackground = 21;  // NSVisualEffectView.Material
constexpr int behindWindow = 0;
constexpr int activeState = 1;

// Points; of a content that has no opinion.
constexpr double usualWidth = 560;
constexpr double usualHeight = 620;
constexpr double margin = 20;  // between the tallest window and the edges of the screen

/// What is higher than the screen scrolls.
double heightWithin(const Rect& visible, double wanted) {
  return visible.isEmpty() ? wanted : std::min(wanted, visible.height - 2 * margin);
}

}  // namespace

SetupWindow::SetupWindow(const MenuBarServices& services, SetupView& view, MakeContent makeContent,
                         SetupGround ground)
    : services_(services),
      view_(view),
      makeContent_(std::move(makeContent)),
      ground_(ground),
      dockPresence_(services.application, services.mainQueue) {}

SetupWindow::~SetupWindow() = default;

bool SetupWindow::show() {
  letGo_.reset();
  if (!window_ && !makeWindow()) {
    return false;
  }
  if (services_.application.activationPolicy() != ActivationPolicy::regular) {
    services_.application.setActivationPolicy(ActivationPolicy::regular);
  }
  animation_->stop();
  window_->setAlpha(1);
  if (!isShown_) {
    isShown_ = true;
    content_->setVisible(true);
  }
  window_->order(WindowOrder::keyAndFront);
  services_.application.activate();
  return true;
}

bool SetupWindow::makeWindow() {
  content_ = makeContent_ ? makeContent_(view_) : nullptr;
  if (!content_) {
    return false;
  }
  window_ = services_.windows.makeTitled({.identifier = DockPresence::windowID,
                                          .title = setup_texts::windowTitle,
                                          .windowWillClose = [this] { closed(); }});
  if (ground_ == SetupGround::material) {
    window_->surface().showEffect({.material = underWindowBackground,
                                   .blendingMode = behindWindow,
                                   .state = activeState,
                                   .hasContinuousCorners = false,
                                   .masksToBounds = false});
  }
  window_->surface().setContent(content_);
  animation_ = std::make_unique<WindowAnimation>(window_, services_.displayLinks, services_.clock);
  place();
  content_->setHeightHandler([this](double height) { fit(height); });
  return true;
}

/// Of the screen that the window is on, else of the main one; empty where there is none.
Rect SetupWindow::visibleArea() const {
  const auto& screens = services_.screens.screens().get();
  const auto own = std::ranges::find_if(
      screens, [this](const Screen& screen) { return screen.frame.intersects(window_->frame()); });
  if (own != screens.end()) {
    return own->visibleFrame;
  }
  return screens.empty() ? Rect{} : screens.front().visibleFrame;
}

/// In the middle of the main screen.
void SetupWindow::place() {
  const Rect visible = visibleArea();
  const double width = content_->fittingWidth() > 0 ? content_->fittingWidth() : usualWidth;
  const double wanted = content_->fittingHeight() > 0 ? content_->fittingHeight() : usualHeight;
  const double height = heightWithin(visible, wanted);
  window_->setFrame({visible.midX() - width / 2, visible.midY() - height / 2, width, height});
}

/// Grows and shrinks at its lower edge, and upwards where the screen ends below.
void SetupWindow::fit(double wanted) {
  const Rect frame = window_->frame();
  const Rect visible = visibleArea();
  const double height = heightWithin(visible, wanted);
  const double lower = frame.maxY() - height;
  const double y =
      visible.isEmpty() ? lower : std::max(lower, std::min(frame.y, visible.y + margin));
  if (wanted > 0 && (height != frame.height || y != frame.y)) {
    window_->setFrame({frame.x, y, frame.width, height});
  }
}

void SetupWindow::close() {
  if (isShown_) {
    animation_->stop();
    hide();
    window_->order(WindowOrder::out);
    gone();
  }
}

void SetupWindow::hide() {
  isShown_ = false;
  content_->setVisible(false);
}

void SetupWindow::fadeOut(std::function<void()> completion) {
  hide();
  animation_->animateAlpha(0, fadeDuration, [this, completion = std::move(completion)] {
    window_->order(WindowOrder::out);
    gone();
    completion();
  });
}

void SetupWindow::closed() {
  animation_->stop();
  if (isShown_) {
    hide();
  }
  gone();
  if (windowWillClose) {
    windowWillClose();
  }
}

/// The program takes up little without it; but what is drawn may be in the midst of a call.
void SetupWindow::gone() {
  dockPresence_.update();
  letGo_ = services_.mainQueue.after(0, [this] {
    animation_.reset();
    window_.reset();
    content_.reset();
    letGo_.reset();
  });
}

Rect SetupWindow::onScreen(const Rect& inContent) const {
  const Rect window = frame();
  return {window.x + inContent.x, window.maxY() - inContent.y - inContent.height, inContent.width,
          inContent.height};
}

}  // namespace plemora
