#pragma once

#include <algorithm>

namespace plemora {

/// An alpha on its way, as a function of time. Times in seconds.
class StageFade {
 public:
  /// Goes there from where it is now.
  void start(double now, double to, double duration) {
    from_ = at(now);
    to_ = to;
    begin_ = now;
    duration_ = duration;
  }

  double at(double now) const {
    if (duration_ <= 0 || now >= begin_ + duration_) {
      return to_;
    }
    return from_ + (to_ - from_) * std::max((now - begin_) / duration_, 0.0);
  }

 private:
  double from_ = 0;
  double to_ = 0;
  double begin_ = 0;
  double duration_ = 0;
};

}  // namespace plemora
