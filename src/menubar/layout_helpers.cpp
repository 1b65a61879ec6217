#include "menubar/layout_helpers.h"

#include <utility>

namespace plemora {

Rect PinTop::frame(const Rect& frame, double height) {
  return {frame.x, frame.maxY() - height, frame.width, height};
}

Rect PinTop::content(const Size& window, double contentHeight, bool isFlipped) {
  return {0, isFlipped ? 0 : window.height - contentHeight, window.width, contentHeight};
}

HeightReader::HeightReader(std::shared_ptr<HostedView> view,
                           std::function<void(double height)> report)
    : view_(std::move(view)) {
  view_->setHeightHandler(std::move(report));
}

HeightReader::~HeightReader() {
  view_->setHeightHandler({});
}

}  // namespace plemora
