#include "adapters/stage/desktop/stage_file_drag.h"

#include <utility>

namespace plemora {

StageFileDrag::StageFileDrag(StageInput& input,
                             std::function<bool(const Point&, const std::string&)> take)
    : input_(input), take_(std::move(take)) {
  input_.onReleased = [this] { drop(); };
}

StageFileDrag::~StageFileDrag() {
  input_.onReleased = nullptr;
}

bool StageFileDrag::begin(const std::string& path, std::function<void(bool)> ended) {
  if (path_ || (input_.pressedMouseButtons() & leftMouseButton) == 0) {
    return false;
  }
  path_ = path;
  ended_ = std::move(ended);
  return true;
}

void StageFileDrag::drop() {
  if (const auto path = std::exchange(path_, std::nullopt)) {
    const bool wasTaken = take_(input_.pointerLocation(), *path);
    const auto ended = std::exchange(ended_, nullptr);
    if (ended) {
      ended(wasTaken);
    }
  }
}

}  // namespace plemora
