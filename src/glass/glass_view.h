#pragma once

#include <functional>
#include <memory>

#include "base/geometry.h"
#include "glass/raster.h"
#include "platform/backdrop_source.h"
#include "platform/effect_view.h"
#include "platform/layer.h"
#include "platform/main_queue.h"

namespace plemora {

/// The glass of one window: a background (the visual effect, the system glass or none), effects on
/// that, and a layer of ours on top, rendered into one picture. What lies behind is blurred once
/// and kept, for the whole window: a new top layer, opacity, tint or container costs no blur. So is
/// what each effect blurs, until something below it changes.
///
/// The window tells it where and over what it is shown, asks for the picture when it paints, and
/// forwards the calls of PanelSurface that have the same names. Coordinates are points of the
/// view, y down. Main thread. Whoever asks for effects may keep them longer than the view; they
/// then do nothing.
class GlassView {
 public:
  /// The queue outlives the view.
  explicit GlassView(MainQueue& main);
  ~GlassView();
  GlassView(const GlassView&) = delete;
  GlassView& operator=(const GlassView&) = delete;

  // What is shown.
  void clearBackground();
  std::shared_ptr<EffectView> showEffect(const EffectDescription& description);
  std::shared_ptr<SystemGlassView> showSystemGlass();
  /// Seen only over pixels: the tints that stand for them elsewhere stay as they are.
  std::shared_ptr<EffectView> addEffect(const EffectDescription& description);
  /// All that is shown is in that part of the view and, but for the layer, clipped by its corners.
  void setContainer(const Rect& frame, double cornerRadius);
  /// Set it again after a change of it. Null: none.
  void setLayer(std::shared_ptr<Layer> layer);

  // Where it is shown. Each has the delegate laid out or told where EffectView says so.
  void setSize(Size size);
  void setScale(double scale);  ///< pixels per point
  void setDark(bool isDark);
  void setInWindow(bool isInWindow);

  /// How much of their desktop tint the effects show: 1, as at first, all of it; 0 none, where who
  /// captures what lies behind has tinted that.
  void setTintStrength(double strength);

  /// What can be had of what lies behind; compositor before the first call. Without pixels the
  /// background is a tint: translucent over a compositor, opaque otherwise.
  void setBackdropKind(BackdropSource::Kind kind);
  /// What lies behind, and the rectangle of the view's space that it covers. Pixels beyond the
  /// image are those of its edge. An empty image shows the opaque tint.
  void setBackdrop(BackdropImage image, const Rect& covers);
  /// How far beyond the bounds the background looks, in points: capture that much more.
  double backdropMargin() const;

  /// Called on the main queue, at most once a turn, after the picture stopped being what render()
  /// last gave.
  void setChangeHandler(std::function<void()> changed);

  /// The picture of the view's size times its scale, rounded up. Valid until the next call of
  /// anything here; unchanged calls return what is there. Lays out first what waits for it.
  const Raster& render();
  /// Lets go of all pixels, what lies behind among them: the next render() draws anew, so it wants
  /// another backdrop before it. Tells nobody.
  void forgetPixels();
  /// How often a backdrop has been blurred so far.
  int blurCount() const;
  /// How often the effects on the background have blurred what is below them.
  int effectBlurCount() const;

 private:
  class State;
  std::shared_ptr<State> state_;
};

}  // namespace plemora
