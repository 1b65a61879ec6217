#pragma once

#include <string>
#include <utility>
#include <vector>

#include "journeys/plain_content.h"
#include "menubar/panel_view.h"

namespace plemora {

/// The content of the mixer panel: its rows below one another. Main thread.
class PlainPanel : public PlainContent {
 public:
  explicit PlainPanel(PanelView& view) : view_(view) {
    rows_ = view_.rows.subscribe([this](const PanelRows&) { heightChanged(); });
  }

  double fittingHeight() override { return view_.height(); }

 private:
  std::vector<Part> parts() const override {
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
      parts.push_back({name, {x, y, width, row.height}, {}, std::move(press), {}, {}});
    };
    const auto slider = [&](std::function<void(float)> slide) {
      parts.push_back(
          {row.sliderLabel, {50, y, 200, row.height}, row.volume, {}, std::move(slide), {}});
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
                           {},
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
  Subscription rows_;
};

}  // namespace plemora
