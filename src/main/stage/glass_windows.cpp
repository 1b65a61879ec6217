#include "main/stage/glass_windows.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "glass/glass_view.h"
#include "platform/backdrop_source.h"

namespace plemora {

GlassWindows::~GlassWindows() {
  for (GlassWindow* window : windows_) {
    window->owner_ = nullptr;
  }
}

std::unique_ptr<PanelWindow> GlassWindows::makePanel(const PanelWindowOptions& options) {
  auto window = std::make_unique<GlassWindow>(*this, inner_.makePanel(options), options);
  windows_.push_back(window.get());
  return window;
}

GlassWindow* GlassWindows::before(const PanelWindow* inner) const {
  const auto found = std::ranges::find_if(
      windows_, [&](const GlassWindow* window) { return window->inner_.get() == inner; });
  return found != windows_.end() ? *found : nullptr;
}

std::vector<GlassWindow*> GlassWindows::onScreen() const {
  std::vector<GlassWindow*> shown;
  std::ranges::copy_if(windows_, std::back_inserter(shown),
                       [](GlassWindow* window) { return window->isOnScreen(); });
  return shown;
}

GlassWindow::GlassWindow(GlassWindows& owner, std::unique_ptr<PanelWindow> inner,
                         const PanelWindowOptions& options)
    : owner_(&owner),
      inner_(std::move(inner)),
      options_(options),
      glass_(std::make_unique<GlassView>(owner.queue_)) {
  glass_->setBackdropKind(BackdropSource::Kind::pixels);
  glass_->setChangeHandler([this] { change(); });
}

GlassWindow::~GlassWindow() {
  if (content_) {
    content_->setChangeHandler({});
    content_->setFrame({});
  }
  if (owner_ != nullptr) {
    std::erase(owner_->windows_, this);
  }
}

void GlassWindow::change() {
  isStale_ = true;
  if (owner_ != nullptr && owner_->changed_) {
    owner_->changed_();
  }
}

void GlassWindow::order(WindowOrder order) {
  inner_->order(order);
  glass_->setInWindow(inner_->isOnScreen());
  if (content_) {
    if (order == WindowOrder::keyAndFront && options_.canBecomeKey) {
      content_->setFocused(true);
    } else if (order == WindowOrder::out) {
      content_->setFocused(false);
    }
  }
}

// What is seen of a background is drawn here; the stage's own window has none.
void GlassWindow::clearBackground() {
  glass_->clearBackground();
}

std::shared_ptr<EffectView> GlassWindow::showEffect(const EffectDescription& description) {
  return glass_->showEffect(description);
}

std::shared_ptr<SystemGlassView> GlassWindow::showSystemGlass() {
  return glass_->showSystemGlass();
}

void GlassWindow::setContent(std::shared_ptr<HostedView> content) {
  content_ = std::dynamic_pointer_cast<StageContent>(content);
  if (content_) {
    content_->setChangeHandler([this] { change(); });
    content_->setFrame([inner = inner_.get()] { return inner->frame(); });
  }
  inner_->surface().setContent(std::move(content));
}

void GlassWindow::setLayer(std::shared_ptr<Layer> layer) {
  glass_->setLayer(layer);
  inner_->surface().setLayer(std::move(layer));
}

}  // namespace plemora
