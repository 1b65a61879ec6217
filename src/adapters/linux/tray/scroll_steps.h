#pragma once

namespace plemora {

/// Makes whole notches of the distances that hosts report for the wheel: 120 is a notch, smaller
/// pieces add up. A distance of 1 is a notch too, for the hosts that count these.
class ScrollSteps {
 public:
  /// Notches that are complete with this distance; above 0 is up.
  int add(int distance) {
    if (distance == 1 || distance == -1) {
      return distance;
    }
    if ((distance > 0) != (rest_ > 0)) {
      rest_ = 0;  // a change of direction counts at once
    }
    // No wheel turns this far at once; it keeps the sum in range.
    constexpr int farthest = 120 * 1000;
    rest_ += distance > farthest ? farthest : distance < -farthest ? -farthest : distance;
    const int steps = rest_ / 120;
    rest_ -= steps * 120;
    return steps;
  }

 private:
  int rest_ = 0;
};

}  // namespace plemora
