#include "menubar/window_animation.h"

#include <utility>

namespace plemora {

namespace {

constexpr int mainScreen = -1;

}  // namespace

double WindowAnimation::mix(double from, double to, double share) {
  return from + (to - from) * share;
}

Rect WindowAnimation::mix(const Rect& from, const Rect& to, double share) {
  return {mix(from.x, to.x, share), mix(from.y, to.y, share), mix(from.width, to.width, share),
          mix(from.height, to.height, share)};
}

template <typename Value>
bool WindowAnimation::Track<Value>::isOver(double now) const {
  return now >= start + duration;
}

template <typename Value>
Value WindowAnimation::Track<Value>::at(double now) const {
  return isOver(now) ? to : mix(from, to, easeOut((now - start) / duration));
}

WindowAnimation::WindowAnimation(std::weak_ptr<PanelWindow> window, DisplayLinks& links,
                                 Clock& clock)
    : window_(std::move(window)), links_(links), clock_(clock) {}

void WindowAnimation::animateFrame(const Rect& target, double duration) {
  if (const auto window = window_.lock()) {
    frame_ = Track<Rect>{window->frame(), target, clock_.mediaTime(), duration};
    run(*window);
  }
}

void WindowAnimation::animateAlpha(double target, double duration,
                                   std::function<void()> completion) {
  if (const auto window = window_.lock()) {
    alpha_ = Track<double>{window->alpha(), target, clock_.mediaTime(), duration};
    completion_ = std::move(completion);
    run(*window);
  }
}

void WindowAnimation::stop() {
  link_.reset();
  frame_.reset();
  alpha_.reset();
  completion_ = nullptr;
}

std::optional<Rect> WindowAnimation::targetFrame() const {
  return frame_ ? std::optional(frame_->to) : std::nullopt;
}

double WindowAnimation::easeOut(double time) {
  if (time <= 0 || time >= 1) {
    return time <= 0 ? 0 : 1;
  }
  // The curve gives time and share by a parameter; time rises with it, so halving finds it.
  double low = 0;
  double high = 1;
  for (int step = 0; step < 32; ++step) {
    const double s = (low + high) / 2;
    const double at = s * s * (3 * 0.58 * (1 - s) + s);
    (at < time ? low : high) = s;
  }
  return low * low * (3 - 2 * low);
}

void WindowAnimation::run(PanelWindow& window) {
  if (!link_) {
    link_ = links_.makeLink(window.screen().value_or(mainScreen), [this] { tick(); });
  }
}

void WindowAnimation::tick() {
  const auto window = window_.lock();
  if (!window) {
    stop();
    return;
  }
  // What is over is forgotten first: the window may be animated anew from here on.
  const double now = clock_.mediaTime();
  const auto frame = frame_;
  const auto alpha = alpha_;
  std::function<void()> completion;
  if (frame && frame->isOver(now)) {
    frame_.reset();
  }
  if (alpha && alpha->isOver(now)) {
    alpha_.reset();
    completion = std::exchange(completion_, nullptr);
  }
  if (!frame_ && !alpha_) {
    link_.reset();
  }
  if (frame) {
    window->setFrame(frame->at(now));
  }
  if (alpha) {
    window->setAlpha(alpha->at(now));
  }
  if (completion) {
    completion();
  }
}

}  // namespace plemora
