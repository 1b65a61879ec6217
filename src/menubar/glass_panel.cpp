#include "menubar/glass_panel.h"

#include <utility>

namespace plemora {

VisibilityGate::VisibilityGate(PanelVisibility& visibility, std::shared_ptr<HostedView> content) {
  if (visibility.isVisible.get()) {
    content->setVisible(true);
  }
  subscription_ = visibility.isVisible.subscribeToChanges(
      [](bool isVisible) { return isVisible; },
      [content = std::move(content)](bool isVisible) { content->setVisible(isVisible); });
}

GlassPanel::GlassPanel(Windows& windows, const PanelWindowOptions& options,
                       std::shared_ptr<HostedView> hostingView, PanelVisibility& visibility,
                       MainQueue& mainQueue)
    : hostingView_(std::move(hostingView)),
      acceptsKey_(options.canBecomeKey),
      visibility_(visibility),
      mainQueue_(mainQueue),
      window_(windows.makePanel(options)) {}

GlassPanel::~GlassPanel() = default;

void GlassPanel::make(double cornerRadius, const GlassStyle& style) {
  // The old one lets go of the view that it tunes before there is a new one.
  backdrop_.reset();
  backdrop_ = GlassStyle::make(cornerRadius, hostingView_, style, surface(), mainQueue_);
}

void GlassPanel::setRim(std::unique_ptr<RimLayer> rim, double rimRadius, double zPosition) {
  rim_ = std::move(rim);
  rimRadius_ = rimRadius;
  rimSize_.reset();
  if (rim_) {
    rim_->layer()->zPosition = zPosition;
    updateRim();
  } else {
    surface().setLayer(nullptr);
  }
}

void GlassPanel::setFrame(const Rect& frame) {
  window_->setFrame(frame);
  updateRim();
}

void GlassPanel::order(WindowOrder order) {
  // The content is awake while its window appears, and until it is gone.
  if (order != WindowOrder::out) {
    visibility_.isVisible.set(true);
  }
  window_->order(order);
  if (order == WindowOrder::out) {
    visibility_.isVisible.set(false);
  }
}

void GlassPanel::updateRim() {
  const Size size = frame().size();
  if (!rim_ || rimSize_ == size) {
    return;
  }
  rimSize_ = size;
  rim_->update(size, rimRadius_, surface().isFlipped(), 1);
  surface().setLayer(rim_->layer());
}

}  // namespace plemora
