#include "menubar/window_spring.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace plemora {

namespace {

constexpr int mainScreen = -1;
// In periods of the spring.
constexpr double fadeTime = 0.6;
constexpr double runTime = 2.2;

}  // namespace

WindowSpring::WindowSpring(std::weak_ptr<PanelWindow> window, DisplayLinks& links, Clock& clock)
    : window_(std::move(window)), links_(links), clock_(clock) {}

void WindowSpring::animate(const Rect& target, double alpha, std::function<void()> completion) {
  const auto window = window_.lock();
  if (!window) {
    return;
  }
  from_ = window->frame();
  fromAlpha_ = window->alpha();
  target_ = target;
  targetAlpha_ = alpha;
  completion_ = std::move(completion);
  start_ = clock_.mediaTime();
  if (!link_) {
    link_ = links_.makeLink(window->screen().value_or(mainScreen), [this] { tick(); });
  }
}

void WindowSpring::retarget(const Rect& frame) {
  if (link_) {
    target_ = frame;
  } else if (const auto window = window_.lock()) {
    window->setFrame(frame);
  }
}

double WindowSpring::progress(double t) const {
  const double omega = 2 * std::numbers::pi / response;
  if (damping < 1) {
    const double damped = omega * std::sqrt(1 - damping * damping);
    return 1 - std::exp(-damping * omega * t) *
                   (std::cos(damped * t) + damping * omega / damped * std::sin(damped * t));
  }
  return 1 - std::exp(-omega * t) * (omega * t + 1);
}

Rect WindowSpring::mix(const Rect& from, const Rect& to, double p) {
  return {from.x + (to.x - from.x) * p, from.y + (to.y - from.y) * p,
          std::max(from.width + (to.width - from.width) * p, 1.0),
          std::max(from.height + (to.height - from.height) * p, 1.0)};
}

void WindowSpring::tick() {
  const auto window = window_.lock();
  const double t = clock_.mediaTime() - start_;
  if (window && t <= runTime * response) {
    const double ramp = std::min(t / (fadeTime * response), 1.0);
    window->setFrame(mix(from_, target_, progress(t)));
    window->setAlpha(fromAlpha_ + (targetAlpha_ - fromAlpha_) * ramp);
    return;
  }
  if (window) {
    window->setFrame(target_);
    window->setAlpha(targetAlpha_);
  }
  link_.reset();
  if (const auto completion = std::exchange(completion_, nullptr)) {
    completion();
  }
}

}  // namespace plemora
