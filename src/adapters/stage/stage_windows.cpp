#include "adapters/stage/stage_windows.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace plemora {

void StageSurface::clearBackground() {
  effect.reset();
  systemGlass.reset();
  addedEffects.clear();
}

std::shared_ptr<EffectView> StageSurface::showEffect(const EffectDescription& description) {
  clearBackground();
  effect = std::make_shared<ScriptedEffectView>(queue_, description);
  effects_.push_back(effect);
  return effect;
}

std::shared_ptr<SystemGlassView> StageSurface::showSystemGlass() {
  clearBackground();
  systemGlass = std::make_shared<ScriptedSystemGlass>();
  return systemGlass;
}

std::shared_ptr<EffectView> StageSurface::addEffect(const EffectDescription& description) {
  addedEffects.push_back(std::make_shared<ScriptedEffectView>(queue_, description));
  effects_.push_back(addedEffects.back());
  return addedEffects.back();
}

void StageSurface::setContainer(const Rect& frame, double cornerRadius) {
  container = frame;
  containerRadius = cornerRadius;
}

void StageSurface::setContent(std::shared_ptr<HostedView> view) {
  contents.clear();
  if (view) {
    contents.push_back({std::move(view), {}, 1});
  }
}

void StageSurface::setLayer(std::shared_ptr<Layer> value) {
  layer = std::move(value);
  ++layerUpdates;
}

StageWindow::StageWindow(StageWindows& owner, const PanelWindowOptions& windowOptions,
                         std::optional<TitledWindowOptions> titledOptions)
    : options(windowOptions),
      titled(std::move(titledOptions)),
      number(owner.nextNumber()),
      owner_(&owner),
      surface_(owner.queue_) {}

StageWindow::~StageWindow() {
  if (owner_ != nullptr) {
    std::erase(owner_->windows_, this);
    std::erase(owner_->stack_, this);
  }
}

void StageWindow::setFrame(const Rect& frame) {
  frame_ = frame;
  frames.push_back(frame);
}

void StageWindow::order(WindowOrder order) {
  orders.push_back(order);
  isOnScreen_ = order != WindowOrder::out;
  if (!isOnScreen_) {
    isKey = false;
  } else if (owner_ != nullptr) {
    owner_->bringForward(this);
  }
  if (order == WindowOrder::keyAndFront && options.canBecomeKey) {
    isKey = true;
  }
}

void StageWindow::pressed() {
  if (owner_ != nullptr) {
    owner_->bringForward(this);
  }
  isKey = isKey || options.canBecomeKey;
}

void StageWindow::close() {
  order(WindowOrder::out);
  if (titled && titled->windowWillClose) {
    // A copy, since the handler may end the window.
    const auto willClose = titled->windowWillClose;
    willClose();
  }
}

std::optional<int> StageWindow::screen() {
  if (owner_ == nullptr || !isOnScreen_) {
    return std::nullopt;
  }
  std::optional<int> best;
  double largest = 0;
  for (const Screen& screen : owner_->screens_.screens().get()) {
    const Rect shared = screen.frame.intersection(frame_);
    if (shared.width * shared.height > largest) {
      largest = shared.width * shared.height;
      best = screen.id;
    }
  }
  return best;
}

StageWindows::~StageWindows() {
  for (StageWindow* window : windows_) {
    window->owner_ = nullptr;
  }
}

std::vector<StageWindow*> StageWindows::visible() const {
  std::vector<StageWindow*> result;
  std::ranges::copy_if(stack_, std::back_inserter(result),
                       [](StageWindow* window) { return window->isOnScreen(); });
  std::ranges::stable_sort(result, {}, [](StageWindow* window) { return window->options.level; });
  return result;
}

std::unique_ptr<PanelWindow> StageWindows::makePanel(const PanelWindowOptions& options) {
  return keep(std::make_unique<StageWindow>(*this, options));
}

std::unique_ptr<PanelWindow> StageWindows::makeTitled(const TitledWindowOptions& options) {
  const PanelWindowOptions ordinary{.identifier = options.identifier,
                                    .title = options.title,
                                    .hasShadow = true,
                                    .isMovable = true,
                                    .isDark = false};
  return keep(std::make_unique<StageWindow>(*this, ordinary, options));
}

std::unique_ptr<PanelWindow> StageWindows::keep(std::unique_ptr<StageWindow> window) {
  windows_.push_back(window.get());
  ++made_;
  return window;
}

void StageWindows::bringForward(StageWindow* window) {
  std::erase(stack_, window);
  stack_.push_back(window);
  window->forwardOrder_ = nextNumber();
}

}  // namespace plemora
