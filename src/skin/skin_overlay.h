#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "base/geometry.h"
#include "platform/hosted_view.h"
#include "platform/panel_window.h"
#include "skin/bubble_cancel.h"
#include "skin/look/glass_style.h"
#include "skin/look/rim_layer.h"
#include "skin/skin_services.h"

namespace plemora {

/// The panel over the module, of one style for its whole life: glass, what hides the seam between
/// two tiles, a light under the pointer, a rim, and the view of the module on top. It lets every
/// click through. Its layers bear the names of the members below. Main thread.
class SkinOverlay {
 public:
  static constexpr double cornerRadius = 23.0;  ///< points, of the module and of its tiles

  /// The level that lies above a panel of Control Center of that level.
  static int levelAbove(int panelLevel);

  /// The services and the state outlive it. It is not on screen yet.
  SkinOverlay(const SkinServices& services, SkinState& state, const MakeModuleView& makeView,
              const GlassStyle& style, int level);
  ~SkinOverlay();
  SkinOverlay(const SkinOverlay&) = delete;
  SkinOverlay& operator=(const SkinOverlay&) = delete;

  PanelWindow& panel() { return *window_; }

  /// Global, y up.
  void setFrame(const Rect& frame);
  /// Draws the seam between two tiles and fits everything else to the size. The pills are the
  /// tiles' rectangles in the module, y down; none: a module without a seam. Without a change it
  /// does nothing.
  void updateSeam(const Size& size, const std::vector<Rect>& pills);
  /// Has the seam hidden in the way that suits the appearance.
  void tuneSeamForAppearance();

  /// Lights that part of the module up, and no other, within 0.15 s from now on.
  void lightUp(const Rect& part);
  /// Lets that light go out, within the same time.
  void dim();
  /// Whether the light is on, or out, or on its way there.
  bool glowAgrees(bool isLit) const { return glowTarget() == (isLit ? glowStrength_ : 0); }
  /// Puts the light out at once.
  void endGlow();
  /// Moves the light on; called for each frame.
  void animate();

  /// While it is not shown its view rests.
  void setViewVisible(bool isVisible) { view_->setVisible(isVisible); }

 private:
  /// A part of the glass that is tuned by itself.
  struct Patch {
    std::shared_ptr<EffectView> effect;
    std::unique_ptr<TunedBackdropView> backdrop;
    std::shared_ptr<Layer> mask;
  };
  struct GlowAnimation {
    double start = 0;  // media time
    double from = 0;
    double to = 0;
  };
  struct SeamKey {
    Size size;
    std::vector<Rect> pills;
    double scale = 1;

    bool operator==(const SeamKey&) const = default;
  };

  void makePatches();
  Patch makePatch(const TunedBackdropView::Tuning& tuning, std::shared_ptr<Layer> mask);
  std::optional<Patch> makeFamily(char family, const char* maskName, double radius, double feather);
  void makeBubbleCancel();
  void makeLayers();
  void setPath(const std::optional<Patch>& patch, const Size& size, std::vector<RoundedRect> path);
  void moveGlow(double opacity);
  void showLayers() { window_->surface().setLayer(root_); }
  double scale();
  double glowTarget() const { return glowAnimation_ ? glowAnimation_->to : glow_->opacity; }

  const SkinServices services_;
  const GlassStyle style_;
  const double glowStrength_;
  const std::shared_ptr<HostedView> view_;
  const std::unique_ptr<PanelWindow> window_;
  std::unique_ptr<TunedBackdropView> backdrop_;  // this and the patches go before the window
  std::optional<Patch> gapFix_;
  std::optional<Patch> gapCaps_;
  std::optional<Patch> edgeSoften_;
  std::vector<Patch> bubbleCancel_;

  std::shared_ptr<Layer> root_;
  std::shared_ptr<Layer> seamPatch_;  // holds the next two
  std::shared_ptr<Layer> lift_;
  std::shared_ptr<Layer> seamLight_;
  std::shared_ptr<Layer> glow_;
  std::shared_ptr<Layer> glowBounds_;  // keeps the glow inside the module
  RimLayer rim_;
  std::optional<SeamKey> seamKey_;
  std::optional<GlowAnimation> glowAnimation_;
};

}  // namespace plemora
