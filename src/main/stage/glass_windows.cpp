#include "main/stage/glass_windows.h"

#include <algorithm>
#include <iterator>
#include <ranges>
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
  return keep(std::make_unique<GlassWindow>(*this, inner_.makePanel(options), options));
}

std::unique_ptr<PanelWindow> GlassWindows::makeTitled(const TitledWindowOptions& options) {
  const PanelWindowOptions ordinary{.identifier = options.identifier,
                                    .title = options.title,
                                    .hasShadow = true,
                                    .isMovable = true,
                                    .isDark = false};
  auto window = std::make_unique<GlassWindow>(*this, inner_.makeTitled(options), ordinary);
  window->isTitled = true;
  return keep(std::move(window));
}

std::unique_ptr<PanelWindow> GlassWindows::keep(std::unique_ptr<GlassWindow> window) {
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
  // The stage's window server has its own way of tinting what it hands out.
  glass_->setTintStrength(0);
  glass_->setChangeHandler([this] { change(); });
}

GlassWindow::~GlassWindow() {
  if (owner_ != nullptr) {
    std::erase(owner_->windows_, this);
    owner_ = nullptr;  // nobody is told of what changes from here on
  }
  GlassWindow::setContents({});
}

void GlassWindow::change() {
  isStale_ = true;
  if (owner_ != nullptr && owner_->changed_) {
    owner_->changed_();
  }
}

void GlassWindow::setFrame(const Rect& frame) {
  inner_->setFrame(frame);
  if (isTitled) {
    setContainer({0, 0, frame.width, frame.height}, titledRadius);
  }
}

void GlassWindow::order(WindowOrder order) {
  inner_->order(order);
  glass_->setInWindow(inner_->isOnScreen());
  if (order == WindowOrder::keyAndFront && options_.canBecomeKey) {
    hasKeys_ = true;
  } else if (order == WindowOrder::out) {
    hasKeys_ = false;
  }
  updateFocus();
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

std::shared_ptr<EffectView> GlassWindow::addEffect(const EffectDescription& description) {
  return glass_->addEffect(description);
}

void GlassWindow::setContainer(const Rect& frame, double cornerRadius) {
  container_ = RoundedRect{frame, cornerRadius, true};
  glass_->setContainer(frame, cornerRadius);
  inner_->surface().setContainer(frame, cornerRadius);
}

void GlassWindow::setContent(std::shared_ptr<HostedView> content) {
  std::vector<HostedContent> contents;
  if (content) {
    contents.push_back({std::move(content), {}, 1});
  }
  setContents(std::move(contents));
}

void GlassWindow::setContents(std::vector<HostedContent> contents) {
  if (contents == contents_) {
    return;
  }
  for (const HostedContent& old : contents_) {
    const auto view = std::dynamic_pointer_cast<StageContent>(old.view);
    if (view && std::ranges::find(contents, old.view, &HostedContent::view) == contents.end()) {
      view->setChangeHandler({});
      view->setFrame({});
      view->setFocused(false);
    }
  }
  contents_ = std::move(contents);
  for (const HostedContent& content : contents_) {
    if (const auto view = std::dynamic_pointer_cast<StageContent>(content.view)) {
      view->setChangeHandler([this] { change(); });
      view->setFrame([this, shown = content.view.get()] { return frameOf(*shown); });
    }
  }
  updateFocus();
  change();
  inner_->surface().setContents(contents_);
}

Rect GlassWindow::placeOf(const HostedContent& content) {
  const Size size = inner_->frame().size();
  return content.placeIn(container_ ? container_->rect : Rect{0, 0, size.width, size.height});
}

Rect GlassWindow::frameOf(const HostedView& view) {
  const auto shown = std::ranges::find(
      contents_, &view, [](const HostedContent& content) { return content.view.get(); });
  if (shown == contents_.end()) {
    return {};
  }
  const Rect window = inner_->frame();
  const Rect place = placeOf(*shown);
  return {window.x + place.x, window.maxY() - place.maxY(), place.width, place.height};
}

std::vector<GlassWindow::Content> GlassWindow::contents() {
  std::vector<Content> drawn;
  for (const HostedContent& content : contents_) {
    if (auto view = std::dynamic_pointer_cast<StageContent>(content.view)) {
      drawn.push_back({std::move(view), placeOf(content), content.alpha});
    }
  }
  return drawn;
}

bool GlassWindow::isStale() const {
  return isStale_ || std::ranges::any_of(contents_, [](const HostedContent& content) {
           const auto view = std::dynamic_pointer_cast<StageContent>(content.view);
           return view && content.alpha > 0 && view->isStale();
         });
}

void GlassWindow::updateFocus() {
  bool isTaken = !hasKeys_;
  for (const HostedContent& content : contents_ | std::views::reverse) {
    const bool isFocused = !isTaken && content.takesInput();
    isTaken = isTaken || isFocused;
    if (const auto view = std::dynamic_pointer_cast<StageContent>(content.view)) {
      view->setFocused(isFocused);
    }
  }
}

void GlassWindow::setLayer(std::shared_ptr<Layer> layer) {
  glass_->setLayer(layer);
  inner_->surface().setLayer(std::move(layer));
}

}  // namespace plemora
