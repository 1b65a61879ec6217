#include "menubar/icon_highlight.h"

#include "platform/layer.h"
#include "platform/window_list.h"
#include "skin/look/glass_fill.h"

namespace plemora {

namespace {

constexpr double darkAlpha = 0.14;
constexpr double lightAlpha = 0.09;
constexpr Size inset{1, 1};  // points, of the capsule in the icon's frame

PanelWindowOptions highlightOptions() {
  PanelWindowOptions options;
  options.identifier = "icon-highlight";
  options.level = statusWindowLevel + 1;
  options.collectionBehavior =
      windowCanJoinAllSpaces | windowStationary | windowIgnoresCycle | windowFullScreenAuxiliary;
  options.animationBehavior = 2;
  options.ignoresMouseEvents = true;
  options.canBecomeKey = false;
  return options;
}

std::shared_ptr<Layer> capsule(const Size& size, bool isDark) {
  const auto layer = std::make_shared<Layer>();
  layer->name = "capsule";
  layer->frame = Rect{0, 0, size.width, size.height}.inset(inset.width, inset.height);
  layer->backgroundColor = GlassFill::resolve(isDark);
  layer->opacity = isDark ? darkAlpha : lightAlpha;
  layer->cornerRadius = layer->frame.height / 2;
  return layer;
}

}  // namespace

IconHighlight::~IconHighlight() = default;

void IconHighlight::show(const Rect& icon) {
  if (window_ == nullptr) {
    window_ = windows_.makePanel(highlightOptions());
    window_->surface().clearBackground();
  }
  window_->setFrame(icon);
  window_->surface().setLayer(capsule(icon.size(), look_.isDark()));
  window_->setAlpha(1);
  window_->order(WindowOrder::frontRegardless);
}

void IconHighlight::hide() {
  if (window_ != nullptr) {
    window_->order(WindowOrder::out);
    window_.reset();
  }
}

void IconHighlight::setAlpha(double alpha) {
  if (window_ != nullptr) {
    window_->setAlpha(alpha);
  }
}

}  // namespace plemora
