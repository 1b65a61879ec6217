#pragma once

#include <functional>
#include <utility>
#include <vector>

#include "platform/route_picker.h"

namespace plemora {

/// A list of receivers that is open until the script closes it. Main thread.
class ScriptedRoutePicker : public RoutePicker {
 public:
  void present(const Rect& anchor, std::function<void()> didEnd) override {
    anchors_.push_back(anchor);
    didEnd_ = std::move(didEnd);
  }

  /// The user is done with the list.
  void close() {
    if (const auto didEnd = std::exchange(didEnd_, nullptr)) {
      didEnd();
    }
  }

  bool isOpen() const { return didEnd_ != nullptr; }
  /// Where it was shown, in order.
  const std::vector<Rect>& anchors() const { return anchors_; }

 private:
  std::function<void()> didEnd_;
  std::vector<Rect> anchors_;
};

}  // namespace plemora
