#include "onboarding/helper_panel.h"

#include <utility>

#include "menubar/status_item_controller.h"
#include "onboarding/helper_view.h"
#include "skin/look/control_center_look.h"

namespace plemora {

namespace {

constexpr double cornerRadius = 20;  // points
constexpr double vanishDamping = 0.9;
constexpr double vanishResponse = 0.42;  // seconds
constexpr double fadeTime = 0.2;

PanelWindowOptions helperOptions() {
  PanelWindowOptions options;
  options.identifier = "setup-helper";
  options.title = "Plemora Setup Helper";
  options.level = HelperPanel::floatingLevel;
  options.collectionBehavior =
      windowCanJoinAllSpaces | windowIgnoresCycle | windowFullScreenAuxiliary;
  options.animationBehavior = 2;
  options.hasShadow = true;
  return options;
}

}  // namespace

std::unique_ptr<HelperPanel> HelperPanel::make(const OnboardingServices& services, HelperView& view,
                                               std::function<void(double)> heightChanged) {
  const auto& makeHelper = services.contents.makeHelper;
  const auto content = makeHelper ? makeHelper(view) : nullptr;
  return content ? std::unique_ptr<HelperPanel>(
                       new HelperPanel(services, content, std::move(heightChanged)))
                 : nullptr;
}

HelperPanel::HelperPanel(const OnboardingServices& services,
                         const std::shared_ptr<HostedView>& content,
                         std::function<void(double)> heightChanged)
    : links_(services.menuBar.displayLinks),
      clock_(services.menuBar.clock),
      panel_(std::make_shared<GlassPanel>(services.menuBar.windows, helperOptions(), content,
                                          visibility_, services.menuBar.mainQueue)),
      gate_(visibility_, content),
      fade_(panel_, links_, clock_),
      heightReader_(content, std::move(heightChanged)) {
  panel_->make(cornerRadius, GlassStyle(services.menuBar.look.style("detailStyle", builtInDetail)));
  panel_->setRim(
      std::make_unique<RimLayer>(StatusItemController::rimTop, StatusItemController::rimRest),
      cornerRadius, StatusItemController::rimZPosition);
}

HelperPanel::~HelperPanel() {
  panel_->orderOut();
}

void HelperPanel::appear(const Rect& frame, int level) {
  fade_.stop();
  spring_.emplace(panel_, links_, clock_);
  isFaded_ = false;
  target_ = frame;
  panel_->setIgnoresMouseEvents(false);
  panel_->setLevel(level);
  panel_->setFrame(frame);
  panel_->setAlpha(0);
  panel_->orderFrontRegardless();
}

void HelperPanel::spring(const Rect& frame, double alpha, std::function<void()> completion) {
  // Else both would have the alpha.
  fade_.stop();
  target_ = frame;
  spring_->animate(frame, alpha, std::move(completion));
}

void HelperPanel::vanish(const Rect& frame, std::function<void()> completion) {
  spring_->damping = vanishDamping;
  spring_->response = vanishResponse;
  spring(frame, 0, std::move(completion));
}

void HelperPanel::retarget(const Rect& frame) {
  target_ = frame;
  spring_->retarget(frame);
}

void HelperPanel::follow(const Rect& frame) {
  if (spring_->isRunning()) {
    retarget(frame);
  } else {
    spring(frame, 1);
  }
}

void HelperPanel::fade(bool isFaded) {
  if (isFaded_ == isFaded) {
    return;
  }
  isFaded_ = isFaded;
  panel_->setIgnoresMouseEvents(isFaded);
  const double alpha = isFaded ? 0 : 1;
  if (spring_->isRunning()) {
    spring(target_, alpha);
  } else {
    fade_.animateAlpha(alpha, fadeTime);
  }
}

}  // namespace plemora
