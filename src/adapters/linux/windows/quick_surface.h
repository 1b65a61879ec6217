#pragma once

#include <QTimer>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

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
/// off the screen nothing is captured, watched or drawn. Half a second after the last frame of the
/// glass all that went into it is let go, and what the heap has to spare.
class QuickSurface : public PanelSurface {
 public:
  /// All must outlive the surface.
  QuickSurface(MainQueue& queue, BackdropSource& backdrop, Screens& screens, bool isAlwaysDark);
  ~QuickSurface() override;

  void clearBackground() override;
  std::shared_ptr<EffectView> showEffect(const EffectDescription& description) override;
  std::shared_ptr<SystemGlassView> showSystemGlass() override;
  std::shared_ptr<EffectView> addEffect(const EffectDescription& description) override;
  /// Clips the content by the frame alone: the scene has no other way in software.
  void setContainer(const Rect& frame, double cornerRadius) override;
  /// Contents must be QuickViews.
  void setContent(std::shared_ptr<HostedView> content) override;
  void setContents(std::vector<HostedContent> contents) override;
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
  /// A content and the item that places and fades it.
  struct Slot {
    HostedContent content;
    std::unique_ptr<QQuickItem> holder;  ///< null: not built yet
    QQuickItem* item = nullptr;          ///< its view owns it; null: it has none
  };

  void showContents();
  void build(Slot& slot);
  void place(Slot& slot, int index);
  static void release(Slot& slot);
  void layOut();
  void backdropChanged();
  void glassChanged();
  void prepareFrame();
  void capture();
  void rest();

  BackdropSource& backdrop_;
  Screens& screens_;
  bool isAlwaysDark_;
  GlassView glass_;
  std::vector<Slot> slots_;  // from the bottom
  std::optional<Rect> container_;

  QQuickWindow* window_ = nullptr;
  std::unique_ptr<Root> root_;  // owns the items below it
  GlassItem* behind_ = nullptr;
  QQuickItem* body_ = nullptr;
  GlassItem* glassItem_ = nullptr;
  QQuickItem* clip_ = nullptr;  // what holds the contents

  Rect frame_;  ///< of the window, in whole points
  bool isOnScreen_ = false;
  bool hasKeys_ = false;
  bool isComposited_ = true;
  bool areContentsStale_ = false;
  bool isBackdropStale_ = true;
  bool isGlassStale_ = true;
  QTimer resting_;
  Subscription backdropChanges_;  // while on screen
};

}  // namespace plemora
