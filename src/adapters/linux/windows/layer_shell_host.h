#pragma once

#include <QImage>
#include <QQuickRenderControl>
#include <QQuickWindow>
#include <functional>
#include <memory>

#include "adapters/linux/windows/layer_shell_session.h"
#include "adapters/linux/windows/layer_surface.h"
#include "adapters/linux/windows/panel_host.h"

namespace plemora {

/// A panel on a compositor with the layer shell: the scene of a window that the toolkit does not
/// show, drawn in software into a layer surface of our own. Drawn only while shown, when something
/// has changed and the compositor is ready for it. Hidden it keeps the scene's picture and nothing
/// else.
class LayerShellHost : public PanelHost, private WaylandSurfaceInput {
 public:
  /// Called for each showing; null: the compositor cannot be reached.
  using SessionSource = std::function<std::shared_ptr<LayerShellSession>()>;

  LayerShellHost(const PanelWindowOptions& options, SessionSource session);
  ~LayerShellHost() override;

  QQuickWindow& window() override { return *window_; }
  void setFrame(const Rect& frame) override;
  void show() override;
  void hide() override;
  bool isShown() override { return surface_ != nullptr; }
  void takeKeys() override;
  void setIgnoresMouseEvents(bool ignores) override;
  bool isComposited() override { return true; }
  void setOpacity(double opacity) override;

 private:
  void pointer(const WaylandPointer& event) override;
  void key(const WaylandKey& key) override;
  void keysChanged(bool areHere) override;

  void place();
  void wantFrame();
  void draw();
  bool fitPicture(const QSize& pixels);
  /// Events reach the scene by the event loop: they may hide this panel, or drop it.
  void later(std::function<void(QQuickWindow&)> action);
  void deliver(const WaylandPointer& event);

  SessionSource makeSession_;
  bool takesPointer_;
  std::unique_ptr<QQuickRenderControl> control_;
  std::unique_ptr<QQuickWindow> window_;
  QRect frame_;   ///< toolkit's coordinates
  QRect screen_;  ///< the one that it was shown on
  double opacity_ = 1;
  QImage scene_;  ///< as last rendered; later ones repaint what has changed in it

  bool isSceneStale_ = true;
  bool isFrameWanted_ = false;
  bool isDrawQueued_ = false;
  bool isFrameUnderway_ = false;  ///< the compositor has not shown the last one yet

  // While shown:
  std::shared_ptr<LayerShellSession> session_;
  std::unique_ptr<ShmBuffers> buffers_;
  std::unique_ptr<ShmBuffers> retired_;  ///< of another size, still looked at
  std::unique_ptr<LayerSurface> surface_;
  int scale_ = 1;
};

}  // namespace plemora
