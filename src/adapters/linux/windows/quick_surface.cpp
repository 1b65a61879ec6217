#include "adapters/linux/windows/quick_surface.h"

#include <malloc.h>

#include <QGuiApplication>
#include <QPalette>
#include <QQuickItem>
#include <QQuickWindow>
#include <algorithm>
#include <chrono>
#include <ranges>
#include <utility>

#include "adapters/linux/windows/screen_space.h"
#include "base/log.h"
#include "views/glass_item.h"
#include "views/quick_view.h"

namespace plemora {

namespace {

constexpr Logger logger("windows");

constexpr std::chrono::milliseconds restingDelay{500};

bool isDesktopDark() {
  return QGuiApplication::palette().color(QPalette::Window).lightness() < 128;
}

/// The smallest rectangle that holds all screens.
Rect bounds(const std::vector<Screen>& screens) {
  if (screens.empty()) {
    return {};
  }
  Rect all = screens.front().frame;
  for (const Screen& screen : screens) {
    const double right = std::max(all.maxX(), screen.frame.maxX());
    const double top = std::max(all.maxY(), screen.frame.maxY());
    all.x = std::min(all.x, screen.frame.x);
    all.y = std::min(all.y, screen.frame.y);
    all.width = right - all.x;
    all.height = top - all.y;
  }
  return all;
}

Raster rasterOf(const BackdropImage& image) {
  Raster raster(image.width, image.height);
  std::copy(image.pixels.begin(), image.pixels.end(), raster.pixels().begin());
  return raster;
}

}  // namespace

/// Calls back right before the frame that follows a polish().
class QuickSurface::Root : public QQuickItem {
 public:
  Root(QQuickItem* parent, std::function<void()> prepare)
      : QQuickItem(parent), prepare_(std::move(prepare)) {}

 protected:
  void updatePolish() override { prepare_(); }

 private:
  std::function<void()> prepare_;
};

QuickSurface::QuickSurface(MainQueue& queue, BackdropSource& backdrop, Screens& screens,
                           bool isAlwaysDark)
    : backdrop_(backdrop), screens_(screens), isAlwaysDark_(isAlwaysDark), glass_(queue) {
  glass_.setChangeHandler([this] { glassChanged(); });
  resting_.setSingleShot(true);
  resting_.setInterval(restingDelay);
  QObject::connect(&resting_, &QTimer::timeout, [this] { rest(); });
}

QuickSurface::~QuickSurface() {
  detach();
}

void QuickSurface::clearBackground() {
  glass_.clearBackground();
}

std::shared_ptr<EffectView> QuickSurface::showEffect(const EffectDescription& description) {
  return glass_.showEffect(description);
}

std::shared_ptr<SystemGlassView> QuickSurface::showSystemGlass() {
  return glass_.showSystemGlass();
}

void QuickSurface::setLayer(std::shared_ptr<Layer> layer) {
  glass_.setLayer(std::move(layer));
}

std::shared_ptr<EffectView> QuickSurface::addEffect(const EffectDescription& description) {
  return glass_.addEffect(description);
}

void QuickSurface::setContainer(const Rect& frame, double cornerRadius) {
  container_ = frame;
  glass_.setContainer(frame, cornerRadius);
  layOut();
}

void QuickSurface::setContent(std::shared_ptr<HostedView> content) {
  std::vector<HostedContent> contents;
  if (content) {
    contents.push_back({std::move(content), {}, 1});
  }
  setContents(std::move(contents));
}

void QuickSurface::setContents(std::vector<HostedContent> contents) {
  std::vector<Slot> shown;
  for (HostedContent& content : contents) {
    const auto kept = std::ranges::find_if(
        slots_, [&](const Slot& slot) { return slot.content.view == content.view; });
    shown.push_back(kept != slots_.end() ? std::move(*kept) : Slot{});
    shown.back().content = std::move(content);
    if (kept != slots_.end()) {
      slots_.erase(kept);
    }
  }
  std::ranges::for_each(slots_, release);
  slots_ = std::move(shown);
  areContentsStale_ = true;
  if (root_) {
    root_->polish();
  }
}

void QuickSurface::attach(QQuickWindow& window) {
  window_ = &window;
  root_ = std::make_unique<Root>(window.contentItem(), [this] { prepareFrame(); });
  behind_ = new GlassItem(root_.get());
  body_ = new QQuickItem(root_.get());
  glassItem_ = new GlassItem(body_);
  clip_ = new QQuickItem(body_);
  glass_.setBackdropKind(backdrop_.kind());
  layOut();
}

void QuickSurface::detach() {
  std::ranges::for_each(slots_, release);
  areContentsStale_ = true;
  backdropChanges_ = {};
  root_.reset();
  window_ = nullptr;
}

void QuickSurface::release(Slot& slot) {
  if (slot.item != nullptr) {
    slot.item->setParentItem(nullptr);  // its view owns it
    slot.item = nullptr;
  }
  slot.holder.reset();
}

void QuickSurface::showContents() {
  for (Slot& slot : slots_) {
    if (!slot.holder) {
      build(slot);
    }
  }
  layOut();
  if (hasKeys_) {
    focusContent();
  }
}

void QuickSurface::build(Slot& slot) {
  slot.holder = std::make_unique<QQuickItem>(clip_);
  auto* view = dynamic_cast<QuickView*>(slot.content.view.get());
  slot.item = view != nullptr ? view->item() : nullptr;
  if (slot.item == nullptr) {
    logger.error("The panel stays empty: its content is no view of Qt Quick, or was not built.");
    return;
  }
  slot.item->setParentItem(slot.holder.get());
}

void QuickSurface::place(Slot& slot, int index) {
  if (!slot.holder) {
    return;
  }
  const Rect place = slot.content.placeIn({0, 0, clip_->width(), clip_->height()});
  slot.holder->setPosition({place.x, place.y});
  slot.holder->setSize({place.width, place.height});
  slot.holder->setOpacity(slot.content.alpha);
  slot.holder->setEnabled(slot.content.takesInput());
  slot.holder->setZ(index);
  if (slot.item != nullptr) {
    slot.item->setSize(slot.holder->size());
  }
}

void QuickSurface::setFrame(const Rect& frame) {
  const ScreenSpace space = ScreenSpace::current();
  const Rect whole = space.toGlobal(QRectF(space.toWholePoints(frame)));
  if (whole == frame_) {
    return;
  }
  frame_ = whole;
  isBackdropStale_ = true;
  layOut();
}

void QuickSurface::layOut() {
  glass_.setSize(frame_.size());
  if (!root_) {
    return;
  }
  const QSizeF size(frame_.width, frame_.height);
  for (QQuickItem* item :
       {static_cast<QQuickItem*>(root_.get()), body_, static_cast<QQuickItem*>(glassItem_)}) {
    item->setSize(size);
  }
  const Rect container = container_.value_or(Rect{0, 0, frame_.width, frame_.height});
  clip_->setPosition({container.x, container.y});
  clip_->setSize({container.width, container.height});
  clip_->setClip(container_.has_value());
  for (std::size_t i = 0; i < slots_.size(); ++i) {
    place(slots_[i], static_cast<int>(i));
  }
  root_->polish();
}

void QuickSurface::setOnScreen(bool isOnScreen, bool isComposited) {
  isComposited_ = isComposited;
  behind_->setVisible(!isComposited);
  if (isOnScreen == isOnScreen_) {
    return;
  }
  isOnScreen_ = isOnScreen;
  if (isOnScreen) {
    backdropChanges_ = backdrop_.observe([this] { backdropChanged(); });
    isBackdropStale_ = true;
    glass_.setDark(isAlwaysDark_ || isDesktopDark());
    root_->polish();
  } else {
    backdropChanges_ = {};
  }
  glass_.setInWindow(isOnScreen);
}

void QuickSurface::setOpacity(double opacity) {
  body_->setOpacity(opacity);
}

void QuickSurface::focusContent() {
  hasKeys_ = true;
  for (const Slot& slot : slots_ | std::views::reverse) {
    if (slot.content.takesInput()) {
      if (slot.item != nullptr) {
        slot.item->setFocus(true, Qt::ActiveWindowFocusReason);
      }
      return;
    }
  }
}

void QuickSurface::backdropChanged() {
  isBackdropStale_ = true;
  root_->polish();
}

void QuickSurface::glassChanged() {
  isGlassStale_ = true;
  if (root_ && isOnScreen_) {
    root_->polish();
  }
}

void QuickSurface::prepareFrame() {
  if (!isOnScreen_) {
    return;
  }
  glass_.setScale(window_->effectiveDevicePixelRatio());
  if (std::exchange(isBackdropStale_, false)) {
    capture();
  }
  if (std::exchange(isGlassStale_, false)) {
    glassItem_->setRaster(glass_.render());
    resting_.start();
  }
  if (std::exchange(areContentsStale_, false)) {
    showContents();
  }
}

/// The picture stays, in its item; whatever changes it comes with a new look at what is behind.
void QuickSurface::rest() {
  glass_.forgetPixels();
  isBackdropStale_ = true;
  malloc_trim(0);
}

void QuickSurface::capture() {
  if (backdrop_.kind() != BackdropSource::Kind::pixels) {
    return;
  }
  const double margin = glass_.backdropMargin();
  const Rect area = frame_.inset(-margin, -margin).intersection(bounds(screens_.screens().get()));
  BackdropImage image = backdrop_.capture(area);
  const Rect covers{area.x - frame_.x, frame_.maxY() - area.maxY(), area.width, area.height};
  if (!isComposited_) {
    behind_->setRaster(rasterOf(image));
    behind_->setPosition({covers.x, covers.y});
    behind_->setSize({covers.width, covers.height});
  }
  glass_.setBackdrop(std::move(image), covers);
  isGlassStale_ = true;
}

}  // namespace plemora
