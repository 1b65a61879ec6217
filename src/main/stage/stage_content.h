#pragma once

#include <QImage>
#include <QPointF>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "adapters/stage/desktop/stage_events.h"
#include "base/geometry.h"
#include "main/stage/content_renderer.h"
#include "main/stage/stage_control.h"
#include "platform/hosted_view.h"

namespace plemora {

class Clock;
class QuickView;

/// A view of Qt Quick in a window of the stage: what the window's surface is given instead of the
/// view itself. Draws it into a picture and takes the window's input to it. GUI thread.
class StageContent : public HostedView, public StageWindowClient {
 public:
  /// The view must be a QuickView too. The clock outlives the content. scale: of the screen that it
  /// is to be seen on, which pictures in it are made for.
  StageContent(std::shared_ptr<HostedView> view, Clock& clock, double scale = 1);
  ~StageContent() override;

  /// Brings the view up to date with the size of its window, also when nobody looks at it.
  void layOut();
  /// The view at that size, in points.
  const QImage& picture(const Size& size, double scale);
  bool isStale() const { return renderer_.isStale(); }
  /// Called when the picture is no longer right, at most once until it is asked for.
  void setChangeHandler(std::function<void()> changed) { changed_ = std::move(changed); }

  /// Its window tells where it is (global, y up), and whether it has the keys.
  void setFrame(std::function<Rect()> frame) { frame_ = std::move(frame); }
  void setFocused(bool isFocused);

  /// A rectangle of the view (y down) on the screens (global, y up).
  Rect onScreen(const Rect& inView) const;
  /// What can be operated in it, where it is to be seen.
  std::vector<StageControl> controls() const;

  double fittingHeight() override { return view_->fittingHeight(); }
  double fittingWidth() override { return view_->fittingWidth(); }
  void setHeightHandler(std::function<void(double)> handler) override {
    view_->setHeightHandler(std::move(handler));
  }
  void setMaximumHeight(double height) override { view_->setMaximumHeight(height); }
  void setVisible(bool isVisible) override { view_->setVisible(isVisible); }

  void pointer(const StagePointerEvent& event) override;
  void scroll(const StageScrollEvent& event) override;
  void key(const StageKeyEvent& event) override;

 private:
  void fit(const Size& size);
  quint64 time() const;

  std::shared_ptr<HostedView> view_;
  QuickView& quickView_;
  Clock& clock_;
  std::function<void()> changed_;
  std::function<Rect()> frame_;
  ContentRenderer renderer_;
  double scale_;  // as last drawn
  bool isFocused_ = false;
};

}  // namespace plemora
