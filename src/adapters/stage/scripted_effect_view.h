#pragma once

#include <memory>
#include <utility>

#include "adapters/stage/scripted_effect_layer.h"
#include "platform/effect_view.h"
#include "platform/main_queue.h"

namespace plemora {

/// The system's visual-effect view as a test moves it about. Its layers are the test's to build,
/// and may appear as late as the test likes. Main thread; the queue outlives it.
class ScriptedEffectView : public EffectView {
 public:
  explicit ScriptedEffectView(MainQueue& queue, EffectDescription description = {})
      : queue_(queue), description_(description) {}

  const EffectDescription& description() const { return description_; }

  /// The delegate hears of it at once, and the view is laid out later in the turn.
  void moveToWindow(bool isInWindow);
  /// As the system does it: the layers are made anew first.
  void changeAppearance(ScriptedEffectLayer::Pointer layers);
  void resize(const Rect& bounds);

  ScriptedEffectLayer::Pointer layers;  ///< null: there are none yet

  bool hasDelegate() const { return delegate_ != nullptr; }
  int layouts() const { return layouts_; }
  /// The layer shown between the system's, and where; null when there is none.
  const std::shared_ptr<Layer>& overlay() const { return overlay_; }
  int overlayIndex() const { return overlayIndex_; }

  void setDelegate(Delegate* delegate) override { delegate_ = delegate; }
  void setNeedsLayout() override;
  bool isInWindow() override { return isInWindow_; }
  std::shared_ptr<EffectLayer> layer() override { return layers; }
  Rect bounds() override { return bounds_; }
  void setOverlay(std::shared_ptr<Layer> overlay, int index) override {
    overlay_ = std::move(overlay);
    overlayIndex_ = index;
  }
  /// As last set; null: none.
  const std::shared_ptr<Layer>& mask() const { return mask_; }
  void setMask(std::shared_ptr<Layer> mask) override { mask_ = std::move(mask); }

 private:
  MainQueue& queue_;
  EffectDescription description_;
  Delegate* delegate_ = nullptr;
  bool isInWindow_ = false;
  bool needsLayout_ = false;
  int layouts_ = 0;
  Rect bounds_;
  std::shared_ptr<Layer> overlay_;
  std::shared_ptr<Layer> mask_;
  int overlayIndex_ = -1;
  std::shared_ptr<int> life_ = std::make_shared<int>(0);  // layouts hold it weakly
};

}  // namespace plemora
