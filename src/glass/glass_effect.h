#pragma once

#include <functional>
#include <memory>

#include "glass/effect_tree.h"
#include "glass/glass_look.h"
#include "platform/effect_view.h"
#include "platform/main_queue.h"

namespace plemora {

/// The visual effect of one glass view: its layers, and what its delegate is told when. Held by
/// the view and by whoever tunes it; once detached it does nothing. Main thread.
class GlassEffect : public EffectView, public std::enable_shared_from_this<GlassEffect> {
 public:
  /// changed is called whenever it may look different. The queue is used until detach().
  GlassEffect(const EffectDescription& description, bool isDark, MainQueue& main,
              std::function<void()> changed);

  void setDelegate(Delegate* delegate) override { delegate_ = delegate; }
  void setNeedsLayout() override;
  bool isInWindow() override { return isInWindow_; }
  std::shared_ptr<EffectLayer> layer() override { return tree_->root(); }
  Rect bounds() override { return bounds_; }
  void setOverlay(std::shared_ptr<Layer> overlay, int index) override;
  void setMask(std::shared_ptr<Layer> mask) override;

  void setBounds(const Rect& bounds);
  void setInWindow(bool isInWindow);
  /// Makes the layers anew, as the system does.
  void setDark(bool isDark);
  void layoutIfNeeded();
  void detach();

  const EffectDescription& description() const { return description_; }
  GlassLook look() const;
  /// Of its desktop tint: 1 as the material has it, 0 none.
  void setTintStrength(double strength) { tintStrength_ = strength; }
  /// What is to be drawn over the effect; null: nothing.
  const std::shared_ptr<Layer>& overlay() const { return overlay_; }
  /// Where it is to be seen; null: everywhere.
  const std::shared_ptr<Layer>& mask() const { return mask_; }

 private:
  void makeTree(bool isDark);

  EffectDescription description_;
  MainQueue* main_;  // null once detached
  std::function<void()> changed_;
  std::unique_ptr<EffectTree> tree_;
  std::shared_ptr<Layer> overlay_;
  std::shared_ptr<Layer> mask_;
  Delegate* delegate_ = nullptr;
  Rect bounds_;
  double tintStrength_ = 1;
  bool isInWindow_ = false;
  bool isDark_;
  bool needsLayout_ = false;
};

/// The system's own glass of one glass view; as above.
class SystemGlass : public SystemGlassView {
 public:
  explicit SystemGlass(std::function<void()> changed) : changed_(std::move(changed)) {}

  void setCornerRadius(double radius) override;
  void setStyle(int style) override;
  bool respondsTo(const std::string& selector) override;
  void setValue(int value, const std::string& key) override;
  void setTintColor(const Color& color) override;

  void detach() {
    changed_ = [] {};
  }

  double cornerRadius() const { return cornerRadius_; }
  const SystemGlassOptions& options() const { return options_; }

 private:
  std::function<void()> changed_;
  double cornerRadius_ = 0;
  SystemGlassOptions options_;
};

}  // namespace plemora
