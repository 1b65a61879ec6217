#pragma once

#include <functional>
#include <utility>
#include <vector>

#include "platform/route_picker.h"

namespace plemora {

/// The list of AirPlay receivers of a script. Main thread.
class ScriptedRoutePicker : public RoutePicker {
 public:
  std::vector<Rect> anchors;  ///< of every time that the list was shown

  /// The user closes the list.
  void end() {
    if (const auto didEnd = std::exchange(didEnd_, nullptr)) {
      didEnd();
    }
  }

  void present(const Rect& anchor, std::function<void()> didEnd) override {
    anchors.push_back(anchor);
    didEnd_ = std::move(didEnd);
  }

 private:
  std::function<void()> didEnd_;
};

}  // namespace plemora
