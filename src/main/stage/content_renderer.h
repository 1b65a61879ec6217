#pragma once

#include <QImage>
#include <QRectF>
#include <QSize>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class QInputEvent;
class QQuickItem;
class QQuickRenderControl;
class QQuickWindow;

namespace plemora {

/// Draws a Qt Quick item into a picture, as a window that the toolkit does not show, and lets input
/// reach it. The picture is kept and repainted only where the scene has changed. GUI thread; Qt
/// Quick must draw in software.
class ContentRenderer {
 public:
  /// changed is called when the picture is no longer what the scene shows, at most once until the
  /// next render().
  explicit ContentRenderer(std::function<void()> changed);
  ~ContentRenderer();
  ContentRenderer(const ContentRenderer&) = delete;
  ContentRenderer& operator=(const ContentRenderer&) = delete;

  /// Shows the item, which its owner keeps alive until another one is shown; null: nothing.
  void setItem(QQuickItem* item);
  void setSize(QSize points, double scale);
  /// Lays out what waits for it, so that input and assistive technology find things in their place.
  void layOut();
  /// Premultiplied ARGB, size times scale; transparent where nothing is drawn.
  const QImage& render();
  bool isStale() const { return isStale_; }

  /// Something of the scene as assistive technology finds it.
  struct Control {
    std::string name;
    QRectF place;                 ///< in points of the item; what is scrolled out lies outside
    std::optional<double> value;  ///< of a slider
  };
  /// Those that have a name and are to be seen, from the top of the tree.
  std::vector<Control> controls() const;

  /// Hands an event of pointer, wheel or keys to the scene, at positions of the item. Whether
  /// something in it has taken the event.
  bool send(QInputEvent& event);
  /// The pointer has left.
  void leave();
  /// Whether the scene has the keys; with them the item has the focus.
  void setFocused(bool isFocused);

 private:
  void change();
  bool sendToFocus(QInputEvent& event);

  std::function<void()> changed_;
  std::unique_ptr<QQuickRenderControl> control_;
  std::unique_ptr<QQuickWindow> window_;
  QQuickItem* item_ = nullptr;
  QImage picture_;
  double scale_ = 1;
  bool isStale_ = true;
  bool isFocused_ = false;
};

}  // namespace plemora
