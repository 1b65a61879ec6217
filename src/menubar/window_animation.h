#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "base/geometry.h"
#include "platform/clock.h"
#include "platform/display_link.h"
#include "platform/panel_window.h"

namespace plemora {

/// Moves and fades a window in a given time, fast at first and easing out. The frame and the alpha
/// run apart, each with its own time; a new animation of either takes over from where it is. Main
/// thread.
class WindowAnimation {
 public:
  /// The window is held weakly; links and clock outlive the animation.
  WindowAnimation(std::weak_ptr<PanelWindow> window, DisplayLinks& links, Clock& clock);

  void animateFrame(const Rect& target, double duration);
  /// The completion runs once the alpha is exactly there; never when something else took over.
  void animateAlpha(double target, double duration, std::function<void()> completion = {});
  /// Leaves frame and alpha where they are.
  void stop();

  bool isRunning() const { return link_ != nullptr; }
  /// Where the frame is going; none while it rests.
  std::optional<Rect> targetFrame() const;

  /// What lies between the two, at that share of the way; also beyond them.
  static double mix(double from, double to, double share);
  static Rect mix(const Rect& from, const Rect& to, double share);

  /// The share of the way after that share of the time, both 0...1: the cubic curve with the
  /// control points (0, 0) and (0.58, 1).
  static double easeOut(double time);

 private:
  template <typename Value>
  struct Track {
    Value from;
    Value to;
    double start = 0;
    double duration = 0;

    bool isOver(double now) const;
    Value at(double now) const;
  };

  /// Asks for the frames of the window's screen, unless they come already.
  void run(PanelWindow& window);
  void tick();

  std::weak_ptr<PanelWindow> window_;
  DisplayLinks& links_;
  Clock& clock_;
  std::unique_ptr<DisplayLink> link_;
  std::optional<Track<Rect>> frame_;
  std::optional<Track<double>> alpha_;
  std::function<void()> completion_;
};

}  // namespace plemora
