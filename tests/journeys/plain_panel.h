#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "adapters/stage/desktop/stage_desktop.h"
#include "adapters/stage/desktop/stage_events.h"
#include "main/stage/stage_control.h"
#include "menubar/panel_view.h"
#include "platform/hosted_view.h"

namespace plemora {

/// The content of the mixer panel without any drawing: its rows below one another, each with the
/// controls that the real view has, by the same names. Main thread.
class PlainPanel : public HostedView, public StageWindowClient {
 public:
  explicit PlainPanel(PanelView& view) : view_(view) {
    rows_ = view_.rows.subscribe([this](const PanelRows&) {
      if (heightHandler_) {
        heightHandler_(view_.height());
      }
    });
  }

  /// Those of the panel while its window is there; frames as those of the window.
  static std::vector<StageControl> controls(StageDesktop& desktop) {
    std::vector<StageControl> found;
    for (StageWindow* window : desktop.windows.visible()) {
      const StageSurface& surface = window->stageSurface();
      for (const HostedContent& content : surface.contents) {
        if (const auto* panel = dynamic_cast<PlainPanel*>(content.view.get());
            panel != nullptr && content.takesInput()) {
          const Point origin = content.placeIn(surface.container.value_or(Rect{})).origin();
          panel->appendTo(found,
                          {window->frame().minX() + origin.x, window->frame().maxY() - origin.y});
        }
      }
    }
    return found;
  }

  double fittingHeight() override { return view_.height(); }
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
    if (event.phase == Phase::released) {
      const Part released = std::exchange(held_, {});
      if (released.press && released.frame.contains(event.position)) {
        released.press();
      }
    }
  }
  void scroll(const StageScrollEvent& /*event*/) override {}
  void key(const StageKeyEvent& /*event*/) override {}

 private:
  struct Part {
    std::string name;
    Rect frame;  ///< y down from the top left corner
    std::optional<double> value{};
    std::function<void()> press{};
    std::function<void(float)> slide{};
  };

  /// The top left corner is global, y up.
  void appendTo(std::vector<StageControl>& found, const Point& corner) const {
    for (const Part& part : parts()) {
      found.push_back({part.name,
                       {corner.x + part.frame.x, corner.y - part.frame.maxY(), part.frame.width,
                        part.frame.height},
                       part.value});
    }
  }

  std::vector<Part> parts() const {
    std::vector<Part> result;
    double y = 0;
    for (const PanelRow& row : view_.rows.get()) {
      append(result, row, y);
      y += row.height;
    }
    return result;
  }

  void append(std::vector<Part>& parts, const PanelRow& row, double y) const {
    const auto button = [&](const std::string& name, double x, double width,
                            std::function<void()> press) {
      parts.push_back({name, {x, y, width, row.height}, {}, std::move(press), {}});
    };
    const auto slider = [&](std::function<void(float)> slide) {
      parts.push_back(
          {row.sliderLabel, {50, y, 200, row.height}, row.volume, {}, std::move(slide)});
    };
    PanelView& view = view_;
    switch (row.kind) {
      case PanelRowKind::master:
        slider([&view](float value) { view.setMasterVolume(value); });
        break;
      case PanelRowKind::app:
        button(row.muteHelp, 10, 30, [&view, id = row.id] { view.toggleMute(id); });
        slider([&view, id = row.id](float value) { view.setVolume(value, id); });
        button(row.outputHelp, 260, 40, [&view, id = row.id] { view.toggleExpanded(id); });
        break;
      case PanelRowKind::outputs:
        for (const DeviceEntry& device : row.devices) {
          parts.push_back({device.name,
                           {10, y, 288, device.height},
                           {},
                           [&view, uid = device.uid, id = row.id] { view.setOutput(uid, id); },
                           {}});
          y += device.height;
        }
        break;
      case PanelRowKind::device:
        button(row.title, 10, 288, [&view, uid = row.id] { view.chooseDevice(uid); });
        break;
      case PanelRowKind::settings:
        button(row.title, 10, 288, [&view] { view.openSoundSettings(); });
        break;
      case PanelRowKind::permission:
        button(row.title, 10, 288, [&view] { view.setUp(); });
        break;
      default:
        break;
    }
  }

  PanelView& view_;
  std::function<void(double)> heightHandler_;
  Subscription rows_;
  Part held_;
};

}  // namespace plemora
