#include "skin/detail_panel.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "menubar/layout_helpers.h"
#include "menubar/panel_view.h"
#include "menubar/window_animation.h"
#include "skin/detail_motion.h"
#include "skin/look/glass_style.h"

namespace plemora {

namespace {

// Alphas of the rim's white.
constexpr double rimTop = 0.56;
constexpr double rimRest = 0.18;
constexpr double rimZPosition = 10;

constexpr double veilAlpha = 0.5;

PanelWindowOptions panelOptions(int level) {
  PanelWindowOptions options;
  options.identifier = "control-center-detail";
  options.title = PanelView::title;
  options.level = level;
  options.collectionBehavior =
      windowCanJoinAllSpaces | windowStationary | windowIgnoresCycle | windowFullScreenAuxiliary;
  options.animationBehavior = 2;
  options.ignoresMouseEvents = true;
  options.isDark = false;
  return options;
}

/// The smallest rectangle that covers both.
Rect covering(const Rect& one, const Rect& other) {
  const double left = std::min(one.minX(), other.minX());
  const double bottom = std::min(one.minY(), other.minY());
  return {left, bottom, std::max(one.maxX(), other.maxX()) - left,
          std::max(one.maxY(), other.maxY()) - bottom};
}

}  // namespace

DetailPanel::DetailPanel(Windows& windows, MainQueue& queue, const ControlCenterLook& look,
                         int level, std::shared_ptr<HostedView> moduleView,
                         std::shared_ptr<HostedView> detailView)
    : moduleView_(std::move(moduleView)),
      detailView_(std::move(detailView)),
      window_(windows.makePanel(panelOptions(level))),
      moduleGlass_(GlassStyle(look.style("skinStyle", builtInSkin)).tuning()),
      panelGlass_(GlassStyle(look.style("detailStyle", builtInDetail)).tuning()),
      root_(std::make_shared<Layer>()),
      veil_(std::make_shared<Layer>()),
      rim_(look.tuning("rimOuter").value_or(rimTop), look.tuning("rimInner").value_or(rimRest)),
      isDark_(look.isDark()) {
  window_->setAlpha(0);
  backdrop_ = GlassStyle::make(panelRadius, detailView_,
                               GlassStyle(look.style("detailStyle", builtInDetail)),
                               window_->surface(), queue);
  rim_.layer()->zPosition = rimZPosition;
  veil_->name = "veil";
  veil_->backgroundColor = Color::white();
  veil_->hasContinuousCorners = true;
  root_->sublayers = {veil_, rim_.layer()};
}

DetailPanel::~DetailPanel() = default;

void DetailPanel::setFrames(const Rect& module, const Rect& panel) {
  module_ = module;
  panel_ = panel;
  const Rect ends = covering(module, panel);
  setWindowFrame(container_.isEmpty() ? ends : covering(ends, container_));
}

void DetailPanel::fitWindow() {
  setWindowFrame(covering(module_, panel_));
}

void DetailPanel::setWindowFrame(const Rect& frame) {
  if (window_->frame() != frame) {
    window_->setFrame(frame);
    update();
  }
}

void DetailPanel::setDark(bool isDark) {
  isDark_ = isDark;
  update();
}

void DetailPanel::apply(const Rect& rect, double radius, double progress) {
  container_ = rect;
  radius_ = radius;
  progress_ = progress;
  update();
}

void DetailPanel::update() {
  if (container_.isEmpty()) {
    return;
  }
  PanelSurface& surface = window_->surface();
  const Rect window = window_->frame();
  surface.setContainer({container_.x - window.x, window.maxY() - container_.maxY(),
                        container_.width, container_.height},
                       radius_);
  const double grown = DetailMotion::grown(progress_);
  if (backdrop_) {
    backdrop_->setTuning(glass(grown));
  }
  rim_.update(container_.size(), radius_, true, 1);
  root_->frame = veil_->frame = rim_.layer()->frame;
  veil_->cornerRadius = radius_;
  veil_->opacity = isDark_ ? 0 : veilAlpha * grown;
  surface.setLayer(root_);
  surface.setContents({{moduleView_, inContainer(module_).offset(module_.x - container_.x, 0),
                        DetailMotion::moduleAlpha(progress_)},
                       {detailView_, inContainer(panel_), DetailMotion::detailAlpha(progress_)}});
}

/// Colours that go over from those of the module: those of the panel would show the tiles below,
/// which are glass already, at one stroke.
TunedBackdropView::Tuning DetailPanel::glass(double grown) const {
  TunedBackdropView::Tuning result = panelGlass_;
  if (grown < 1 && moduleGlass_.matrix && panelGlass_.matrix) {
    result.saturation =
        WindowAnimation::mix(moduleGlass_.saturation, panelGlass_.saturation, grown);
    for (std::size_t i = 0; i < result.matrix->size(); ++i) {
      (*result.matrix)[i] = static_cast<float>(
          WindowAnimation::mix((*moduleGlass_.matrix)[i], (*panelGlass_.matrix)[i], grown));
    }
  }
  return result;
}

/// Of its own size, at the top left of the container.
Rect DetailPanel::inContainer(const Rect& frame) const {
  return PinTop::content({frame.width, container_.height}, frame.height, true);
}

}  // namespace plemora
