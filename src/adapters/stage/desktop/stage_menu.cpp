#include "adapters/stage/desktop/stage_menu.h"

#include <algorithm>
#include <utility>

#include "platform/panel_window.h"

namespace plemora {

namespace {

double heightOf(const MenuItem& item) {
  return item.title.empty() ? StageMenu::separatorHeight : StageMenu::itemHeight;
}

}  // namespace

void StageMenu::open(std::vector<MenuItem> items, const Point& topLeft, const Rect& screen,
                     std::int32_t pid, std::string ownerName) {
  items_ = std::move(items);
  pid_ = pid;
  ownerName_ = std::move(ownerName);
  highlighted_.reset();
  double height = 2 * padding;
  for (const MenuItem& item : items_) {
    height += heightOf(item);
  }
  const double x = std::max(std::min(topLeft.x, screen.maxX() - width), screen.minX());
  frame_ = {x, topLeft.y - height, width, height};
  number_ = numbers_.next();
  isOpen_ = true;
}

void StageMenu::close() {
  isOpen_ = false;
  // The actions hold what belongs to the program.
  items_.clear();
  highlighted_.reset();
}

std::vector<std::string> StageMenu::titles() const {
  std::vector<std::string> titles;
  for (const MenuItem& item : items_) {
    titles.push_back(item.title);
  }
  return titles;
}

Rect StageMenu::itemFrame(std::size_t index) const {
  double top = frame_.maxY() - padding;
  for (std::size_t above = 0; above < index; ++above) {
    top -= heightOf(items_[above]);
  }
  const double height = heightOf(items_[index]);
  return {frame_.x, top - height, width, height};
}

std::optional<std::size_t> StageMenu::itemAt(const Point& location) const {
  for (std::size_t index = 0; index < items_.size(); ++index) {
    if (itemFrame(index).contains(location) && !items_[index].title.empty()) {
      return index;
    }
  }
  return std::nullopt;
}

bool StageMenu::choose(const std::string& title) {
  const auto found = std::ranges::find(items_, title, &MenuItem::title);
  if (title.empty() || found == items_.end()) {
    return false;
  }
  choose(static_cast<std::size_t>(found - items_.begin()));
  return true;
}

void StageMenu::choose(std::size_t index) {
  // The action may pop the next menu up, or end the program that owns it.
  const auto action = items_[index].action;
  close();
  if (action) {
    action();
  }
}

void StageMenu::appendWindow(std::vector<StageWindowRecord>& windows) {
  if (isOpen_) {
    windows.push_back({.kind = StageWindowKind::menu,
                       .number = number_,
                       .order = number_,
                       .ownerPid = pid_,
                       .ownerName = ownerName_,
                       .level = popUpMenuWindowLevel,
                       .frame = frame_,
                       .solid = frame_,
                       .model = this});
  }
}

void StageMenu::pointer(const StagePointerEvent& event) {
  const auto index = itemAt(event.location);
  switch (event.phase) {
    case StagePointerEvent::Phase::released:
      if (index) {
        choose(*index);
      }
      break;
    case StagePointerEvent::Phase::left:
      highlighted_.reset();
      break;
    default:
      highlighted_ = index;
  }
}

}  // namespace plemora
