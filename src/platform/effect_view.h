#pragma once

#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "base/geometry.h"
#include "platform/layer.h"

namespace plemora {

/// A filter of an effect layer, by type and name; "colorMatrix" has a matrix.
struct EffectFilter {
  std::string name;
  std::string type;
  ColorMatrix inputColorMatrix{};

  bool operator==(const EffectFilter&) const = default;
};

/// One layer below the system's visual-effect view. The tree belongs to the system, which may
/// replace it at any time: hold no layer across turns of the main loop. Main thread.
class EffectLayer {
 public:
  virtual ~EffectLayer() = default;

  virtual std::string name() = 0;
  virtual std::vector<std::shared_ptr<EffectLayer>> sublayers() = 0;

  /// Key-value coding, such as "filters.gaussianBlur.inputRadius", "marginWidth", "opacity",
  /// "hidden" (1 or 0). A key that the layer does not know is ignored.
  virtual void setValue(double value, const std::string& keyPath) = 0;
  virtual bool respondsTo(const std::string& selector) = 0;

  virtual std::vector<EffectFilter> filters() = 0;
  virtual void setFilters(std::vector<EffectFilter> filters) = 0;
  /// Whether the system has filters of that type that can be made at all.
  virtual bool canMakeFilter(const std::string& type) = 0;
};

/// The system's view that shows, blurred and tinted, what lies behind its window. It tells its
/// delegate when it is laid out, shown and when the appearance changes. Main thread.
class EffectView {
 public:
  class Delegate {
   public:
    virtual ~Delegate() = default;
    virtual void layout() = 0;
    virtual void viewDidMoveToWindow() = 0;
    virtual void viewDidChangeEffectiveAppearance() = 0;
  };

  virtual ~EffectView() = default;

  /// Held weakly by the caller's choice: null ends it.
  virtual void setDelegate(Delegate* delegate) = 0;
  /// The delegate's layout() is called once, later in this turn of the main loop or in the next.
  virtual void setNeedsLayout() = 0;
  virtual bool isInWindow() = 0;
  /// Null while there is none.
  virtual std::shared_ptr<EffectLayer> layer() = 0;
  virtual Rect bounds() = 0;
  /// Shows a layer of ours between the system's, at that index from the bottom; null takes it away.
  /// The layer that is shown already keeps its place, and its record is read again.
  virtual void setOverlay(std::shared_ptr<Layer> overlay, int index) = 0;
  /// Shows the effect only where that layer is opaque, feathered as it says; null: everywhere. The
  /// record is read again whenever it is set. Frames in points of the view, y down.
  virtual void setMask(std::shared_ptr<Layer> mask) = 0;
};

/// NSVisualEffectView's properties, and those of its layer.
struct EffectDescription {
  int material = 13;     ///< NSVisualEffectView.Material
  int blendingMode = 0;  ///< 0: what is behind the window; 1: what is below it in the window
  int state = 1;         ///< 1: active
  double cornerRadius = 0;
  bool hasContinuousCorners = true;
  bool masksToBounds = true;

  bool operator==(const EffectDescription&) const = default;
};

/// Options of the system's own glass, by key.
class SystemGlassView {
 public:
  virtual ~SystemGlassView() = default;

  virtual void setCornerRadius(double radius) = 0;
  virtual void setStyle(int style) = 0;
  virtual bool respondsTo(const std::string& selector) = 0;
  virtual void setValue(int value, const std::string& key) = 0;
  virtual void setTintColor(const Color& color) = 0;
};

}  // namespace plemora
