#include "adapters/stage/desktop/stage_menu_bar.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <utility>

#include "platform/input_events.h"
#include "platform/window_list.h"

namespace plemora {

namespace {

constexpr double edge = 8;  // points that items without a place of their own keep from the right

unsigned maskOf(StageButton button) {
  switch (button) {
    case StageButton::left:
      return leftMouseDownMask;
    case StageButton::right:
      return rightMouseDownMask;
    case StageButton::middle:
      break;
  }
  return 0;
}

}  // namespace

/// The program's hold on its item, which may be the last thing that it lets go of.
class StageMenuBar::ProgramItem : public StatusItem {
 public:
  ProgramItem(std::shared_ptr<StageMenuBar*> bar, std::shared_ptr<StageStatusItem> item)
      : bar_(std::move(bar)), item_(std::move(item)) {}
  ~ProgramItem() override {
    if (*bar_ != nullptr && (*bar_)->menuItem_.lock() == item_) {
      (*bar_)->menu_.close();
    }
  }

  void setImage(const SymbolImage& image) override { item_->image = image; }
  void setHighlighted(bool isHighlighted) override { item_->isHighlighted = isHighlighted; }
  std::optional<Rect> frame() override {
    if (*bar_ == nullptr || (*bar_)->screens_.screens().get().empty()) {
      return std::nullopt;
    }
    (*bar_)->layOut();
    return item_->frame;
  }
  void popUpMenu(std::vector<MenuItem> items) override {
    if (*bar_ != nullptr) {
      (*bar_)->popUp(item_, std::move(items));
    }
  }

 private:
  std::shared_ptr<StageMenuBar*> bar_;  // holds null once it is gone
  std::shared_ptr<StageStatusItem> item_;
};

StageMenuBar::StageMenuBar(Screens& screens, StageWindowNumbers& numbers,
                           std::function<std::pair<std::int32_t, std::string>()> identity)
    : screens_(screens),
      numbers_(numbers),
      identity_(std::move(identity)),
      menu_(numbers),
      life_(std::make_shared<StageMenuBar*>(this)) {}

StageMenuBar::~StageMenuBar() {
  *life_ = nullptr;
}

std::shared_ptr<StageStatusItem> StageMenuBar::addExtra(StageStatusItem item) {
  auto added = std::make_shared<StageStatusItem>(std::move(item));
  added->number = numbers_.next();
  std::erase_if(items_, [](const auto& weak) { return weak.expired(); });
  items_.push_back(added);
  return added;
}

std::unique_ptr<StatusItem> StageMenuBar::makeItem(const StatusItemOptions& options,
                                                   StatusItemHandlers handlers) {
  const auto [pid, name] = identity_();
  StageStatusItem item{.pid = pid, .ownerName = name, .label = options.accessibilityLabel};
  if (options.length > 0) {
    item.width = options.length;
  }
  item.actionMask = options.actionMask;
  item.clicked = std::move(handlers.clicked);
  item.scrolled = std::move(handlers.scrolled);
  return std::make_unique<ProgramItem>(life_, addExtra(std::move(item)));
}

double StageMenuBar::height() const {
  const auto& screens = screens_.screens().get();
  return screens.empty() ? 0 : screens[0].frame.maxY() - screens[0].visibleFrame.maxY();
}

std::vector<std::shared_ptr<StageStatusItem>> StageMenuBar::layOut() {
  std::vector<std::shared_ptr<StageStatusItem>> placed;
  std::vector<std::shared_ptr<StageStatusItem>> others;
  for (const auto& weak : items_) {
    if (auto item = weak.lock()) {
      (item->preferredPosition ? placed : others).push_back(std::move(item));
    }
  }
  std::ranges::stable_sort(placed, {}, [](const auto& item) { return *item->preferredPosition; });
  const Rect screen = screens_.screens().get().empty() ? Rect{} : screens_.screens().get()[0].frame;
  const double barHeight = height();
  double right = screen.maxX();
  for (const auto& item : placed) {
    // As far to the right as it wishes, in front of nothing that stands there already.
    right = std::min(right, screen.maxX() - *item->preferredPosition);
    item->frame = {right - item->width, screen.maxY() - barHeight, item->width, barHeight};
    right -= item->width;
  }
  right = std::min(right, screen.maxX() - edge);
  for (const auto& item : others) {
    item->frame = {right - item->width, screen.maxY() - barHeight, item->width, barHeight};
    right -= item->width;
  }
  std::ranges::move(others, std::back_inserter(placed));
  return placed;
}

std::vector<std::shared_ptr<StageStatusItem>> StageMenuBar::items() {
  return layOut();
}

std::shared_ptr<StageStatusItem> StageMenuBar::extra(const std::string& identifier) {
  for (auto& item : layOut()) {
    if (item->identifier == identifier) {
      return item;
    }
  }
  return nullptr;
}

void StageMenuBar::popUp(const std::shared_ptr<StageStatusItem>& item,
                         std::vector<MenuItem> items) {
  layOut();
  menuItem_ = item;
  const auto& screens = screens_.screens().get();
  if (!screens.empty()) {
    menu_.open(std::move(items), item->frame.origin(), screens[0].frame, item->pid,
               item->ownerName);
  }
}

void StageMenuBar::appendWindows(std::vector<StageWindowRecord>& windows) {
  const auto& screens = screens_.screens().get();
  while (barNumbers_.size() < screens.size()) {
    barNumbers_.push_back(numbers_.next());
  }
  for (std::size_t index = 0; index < screens.size(); ++index) {
    const Rect& frame = screens[index].frame;
    const double barHeight = frame.maxY() - screens[index].visibleFrame.maxY();
    if (barHeight > 0) {
      const Rect bar{frame.x, frame.maxY() - barHeight, frame.width, barHeight};
      windows.push_back({.kind = StageWindowKind::menuBar,
                         .number = barNumbers_[index],
                         .order = barNumbers_[index],
                         .ownerName = "Window Server",
                         .level = windowLevel,
                         .frame = bar,
                         .solid = bar,
                         .model = {}});
    }
  }
  if (screens.empty()) {
    return;
  }
  for (const auto& item : layOut()) {
    windows.push_back({.kind = StageWindowKind::statusItem,
                       .number = item->number,
                       .order = item->number,
                       .ownerPid = item->pid,
                       .ownerName = item->ownerName,
                       .level = statusWindowLevel,
                       .frame = item->frame,
                       .solid = item->frame,
                       .model = static_cast<const StageStatusItem*>(item.get())});
  }
  menu_.appendWindow(windows);
}

std::shared_ptr<StageStatusItem> StageMenuBar::itemOf(const StageWindowRecord& window) {
  for (auto& item : layOut()) {
    if (item->number == window.number) {
      return item;
    }
  }
  return nullptr;
}

void StageMenuBar::pointer(const StageWindowRecord& window, const StagePointerEvent& event) {
  if (window.kind == StageWindowKind::menu) {
    menu_.pointer(event);
    return;
  }
  if (event.phase != StagePointerEvent::Phase::pressed) {
    return;
  }
  if (menu_.isOpen()) {
    menu_.close();
    return;
  }
  const auto item = itemOf(window);
  if (item && item->clicked && (item->actionMask & maskOf(event.button)) != 0) {
    // A copy: what it does may take the item away.
    const auto clicked = item->clicked;
    clicked(event.button == StageButton::left ? StatusButtonEvent::leftMouseDown
                                              : StatusButtonEvent::rightMouseDown);
  }
}

void StageMenuBar::scroll(const StageWindowRecord& window, const StageScrollEvent& event) {
  const auto item = itemOf(window);
  if (item && item->scrolled && event.steps != 0) {
    const auto scrolled = item->scrolled;
    scrolled(event.steps);
  }
}

bool StageMenuBar::pressedElsewhere(const StageWindowRecord* /*hit*/) {
  const bool wasOpen = menu_.isOpen();
  menu_.close();
  return wasOpen;
}

std::int64_t StageMenuBar::keyOrder() {
  // A menu has the keyboard before everything else.
  return menu_.isOpen() ? std::numeric_limits<std::int64_t>::max() : 0;
}

void StageMenuBar::key(const StageKeyEvent& event) {
  if (event.isDown && event.keyCode == escapeKeyCode) {
    menu_.close();
  }
}

}  // namespace plemora
