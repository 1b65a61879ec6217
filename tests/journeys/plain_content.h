#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "adapters/stage/desktop/stage_desktop.h"
#include "adapters/stage/desktop/stage_events.h"
#include "main/stage/stage_control.h"
#include "platform/hosted_view.h"

namespace plemora {

/// The content of one of the program's windows without any drawing: the controls that the real view
/// has, by the same names. Main thread.
class PlainContent : public HostedView, public StageWindowClient {
 public:
  /// Those of all windows that are there.
  static std::vector<StageControl> controls(StageDesktop& desktop) {
    std::vector<StageControl> found;
    for (StageWindow* window : desktop.windows.visible()) {
      const StageSurface& surface = window->stageSurface();
      for (const HostedContent& content : surface.contents) {
        if (const auto* plain = dynamic_cast<PlainContent*>(content.view.get());
            plain != nullptr && content.takesInput()) {
          const Point origin = content.placeIn(surface.container.value_or(Rect{})).origin();
          plain->appendTo(found,
                          {window->frame().minX() + origin.x, window->frame().maxY() - origin.y});
        }
      }
    }
    return found;
  }

  void setHeightHandler(std::function<void(double)> handler) override {
    heightHandler_ = std::move(handler);
  }
  void setVisible(bool /*isVisible*/) override {}

  void pointer(const StagePointerEvent& event) override {
    using Phase = StagePointerEvent::Phase;
    if (event.phase == Phase::pressed) {
      for (Part& part : parts()) {
        if (part.frame.contains(event.position)) {
          held_ = std::move(part);
        }
      }
    }
    if (held_.slide && (event.phase == Phase::pressed || event.phase == Phase::dragged)) {
      const double value = (event.position.x - held_.frame.x) / held_.frame.width;
      held_.slide(static_cast<float>(value));
    }
    if (held_.drag && event.phase == Phase::dragged) {
      std::exchange(held_.drag, nullptr)();
    }
    if (event.phase == Phase::released) {
      const Part released = std::exchange(held_, {});
      if (released.press && released.frame.contains(event.position)) {
        released.press();
      }
    }
  }
  void scroll(const StageScrollEvent& /*event*/) override {}
  void key(const StageKeyEvent& /*event*/) override {}

 protected:
  struct Part {
    std::string name;
    Rect frame;  ///< y down from the top left corner
    std::optional<double> value{};
    std::function<void()> press{};
    std::function<void(float)> slide{};
    std::function<void()> drag{};  ///< it is being dragged away
  };

  virtual std::vector<Part> parts() const = 0;

  void heightChanged() {
    if (heightHandler_) {
      heightHandler_(fittingHeight());
    }
  }

 private:
  /// The top left corner is global, y up.
  void appendTo(std::vector<StageControl>& found, const Point& corner) const {
    for (const Part& part : parts()) {
      found.push_back({part.name,
                       {corner.x + part.frame.x, corner.y - part.frame.maxY(), part.frame.width,
                        part.frame.height},
                       part.value});
    }
  }

  std::function<void(double)> heightHandler_;
  Part held_;
};

}  // namespace plemora
