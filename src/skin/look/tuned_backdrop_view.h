#pragma once

#include <memory>
#include <optional>

#include "platform/effect_view.h"
#include "platform/main_queue.h"

namespace plemora {

/// The system's visual effect behind a window, tuned to look like Control Center's glass: reaches
/// into the layers that the system makes for it, and does so again whenever the system may have
/// made them anew. Main thread. Untuned, without a message, when those layers never appear.
class TunedBackdropView : private EffectView::Delegate {
 public:
  /// An even tint over the backdrop.
  struct Overlay {
    double gray = 0;  ///< white level, 0...1
    double alpha = 0;

    bool operator==(const Overlay&) const = default;
  };

  struct Tuning {
    double blurRadius = 6.0;  ///< points
    double saturation = 1.7;
    float fillOpacity = 0.25F;
    float toneOpacity = 0.0F;
    double gain = 1.0;  ///< of the three colours, where there is no matrix
    bool hideDesktopTint = false;
    std::optional<Overlay> overlay;
    std::optional<ColorMatrix> matrix;
    std::optional<double> margin;  ///< none: the system's

    bool operator==(const Tuning&) const = default;
  };

  /// The effect that is tuned: the material of a HUD window, behind the window, always active.
  static EffectDescription effect(double cornerRadius) {
    return {13, 0, 1, cornerRadius, true, true};
  }

  /// Becomes the view's delegate for as long as it lives. The queue outlives it.
  TunedBackdropView(std::shared_ptr<EffectView> view, MainQueue& queue);
  ~TunedBackdropView() override;
  TunedBackdropView(const TunedBackdropView&) = delete;
  TunedBackdropView& operator=(const TunedBackdropView&) = delete;

  const Tuning& tuning() const { return tuning_; }
  /// Takes effect with the next layout. Nothing happens when it equals the present one.
  void setTuning(const Tuning& tuning);

  /// Pushes the tuning into that layer and all below. Whether a backdrop was among them.
  bool apply(EffectLayer& layer) const;

  /// Gives the layer the colour matrix filter "mixerGain", in place of any that it has; does
  /// nothing where the system has no such filters.
  void addGain(EffectLayer& layer) const;

 private:
  void layout() override;
  void viewDidMoveToWindow() override;
  void viewDidChangeEffectiveAppearance() override;

  void applyAgain();
  void applyIfNeeded();
  void layOutOverlay();

  std::shared_ptr<EffectView> view_;
  MainQueue& queue_;
  Tuning tuning_;
  std::shared_ptr<Layer> overlayLayer_ = std::make_shared<Layer>();
  bool isOverlayShown_ = false;
  bool applied_ = false;
  int retries_ = 0;
  std::shared_ptr<int> life_ = std::make_shared<int>(0);  // retries hold it weakly
};

}  // namespace plemora
