#pragma once

#include <functional>
#include <utility>
#include <vector>

#include "platform/hosted_view.h"

namespace plemora {

/// A view whose height a script sets. Main thread.
class ScriptedHostedView : public HostedView {
 public:
  double height = 0;  ///< that it wants to be
  double maximumHeight = 0;
  std::vector<bool> visibility;  ///< every setVisible, in order

  /// The view wants another height, and says so at once.
  void grow(double to) {
    height = to;
    if (handler_) {
      handler_(to);
    }
  }

  double fittingHeight() override { return height; }
  void setHeightHandler(std::function<void(double height)> handler) override {
    handler_ = std::move(handler);
  }
  void setMaximumHeight(double most) override { maximumHeight = most; }
  void setVisible(bool isVisible) override { visibility.push_back(isVisible); }

 private:
  std::function<void(double)> handler_;
};

}  // namespace plemora
