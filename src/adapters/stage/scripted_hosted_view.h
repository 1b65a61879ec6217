#pragma once

#include <functional>
#include <utility>

#include "platform/hosted_view.h"

namespace plemora {

/// A view as high as a script says. Main thread.
class ScriptedHostedView : public HostedView {
 public:
  double height = 300;       ///< 0: it does not know
  double maximumHeight = 0;  ///< as given; 0: none yet, or any
  bool isVisible = false;
  int measurements = 0;       ///< of its fitting height
  int visibilityChanges = 0;  ///< calls of setVisible

  /// The content grows or shrinks, and the view tells.
  void resize(double newHeight) {
    height = newHeight;
    if (handler_) {
      handler_(newHeight);
    }
  }

  bool hasHeightHandler() const { return handler_ != nullptr; }

  double fittingHeight() override {
    ++measurements;
    return height;
  }
  void setHeightHandler(std::function<void(double)> handler) override {
    handler_ = std::move(handler);
  }
  void setMaximumHeight(double value) override { maximumHeight = value; }
  void setVisible(bool value) override {
    isVisible = value;
    ++visibilityChanges;
  }

 private:
  std::function<void(double)> handler_;
};

}  // namespace plemora
