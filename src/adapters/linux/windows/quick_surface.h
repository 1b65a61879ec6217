#pragma once

#include <functional>
#include <memory>

#include "glass/glass_view.h"
#include "platform/backdrop_source.h"
#include "platform/main_queue.h"
#include "platform/panel_window.h"
#include "platform/screens.h"

class QQuickItem;
class QQuickWindow;

namespace plemora {

class GlassItem;

/// The scene of one panel, from the bottom: what is behind the window (only where the display
/// cannot show it by itself), the glass with the rim, the content. What is behind is captured, and
/// the glass drawn, right before a frame that needs it, at most once for each. While the panel is
/// off the screen nothing is captured, watched or drawn.
class QuickSurface : public PanelSurface {
 public:
  /// All must outlive the surface.
  QuickSurface(MainQueue& queue, BackdropSource& backdrop, Screens& screens, bool isAlwaysDark);
  ~QuickSurface() override;

  void clearBackground() override;
  std::shared_ptr<EffectView> showEffect(const EffectDescription& description) override;
  std::shared_ptr<SystemGlassView> showSystemGlass() override;
  /// The content must be a QuickView.
  void setContent(std::shared_ptr<HostedView> content) override;
  void setLayer(std::shared_ptr<Layer> layer) override;
  bool isFlipped() override { return true; }

  /// Builds the scene in the window, which must outlive the surface's items: detach() before it
  /// goes. The content is built last, right before the first frame: it may be on its way still.
  void attach(QQuickWindow& window);
  void detach();

  /// Global points.
  void setFrame(const Rect& frame);
  /// Before the window is shown, and after it is hidden.
  void setOnScreen(bool isOnScreen, bool isComposited);
  /// Of everything but what is behind.
  void setOpacity(double opacity);
  /// The content gets the keys that the window gets.
  void focusContent();

 private:
  class Root;

  void showContent();
  void layOut();
  void backdropChanged();
  void glassChanged();
  void prepareFrame();
  void capture();

  BackdropSource& backdrop_;
  Screens& screens_;
  bool isAlwaysDark_;
  GlassView glass_;
  std::shared_ptr<HostedView> content_;

  QQuickWindow* window_ = nullptr;
  std::unique_ptr<Root> root_;  // owns the items below it
  GlassItem* behind_ = nullptr;
  QQuickItem* body_ = nullptr;
  GlassItem* glassItem_ = nullptr;
  QQuickItem* contentItem_ = nullptr;

  Rect frame_;  ///< of the window, in whole points
  bool isOnScreen_ = false;
  bool hasKeys_ = false;
  bool isComposited_ = true;
  bool isContentStale_ = false;
  bool isBackdropStale_ = true;
  bool isGlassStale_ = true;
  Subscription backdropChanges_;  // while on screen
};

}  // namespace plemora
