#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/status_bar.h"

namespace plemora {

/// A menu bar whose items a script clicks. It keeps what the latest item shows. Main thread; it
/// outlives the item.
class ScriptedStatusBar : public StatusBar {
 public:
  /// Of the button; none: it has no window.
  std::optional<Rect> frame = Rect{1200, 876, 24, 24};

  StatusItemOptions options;
  StatusItemHandlers handlers;
  std::optional<SymbolImage> image;  ///< none: never set
  int images = 0;                    ///< set so far
  bool isHighlighted = false;
  /// Every menu that popped up, in order.
  std::vector<std::vector<MenuItem>> menus;
  bool hasItem = false;

  void click(StatusButtonEvent event = StatusButtonEvent::leftMouseDown) {
    handlers.clicked(event);
  }
  void scroll(int steps) { handlers.scrolled(steps); }

  [[nodiscard]] std::unique_ptr<StatusItem> makeItem(const StatusItemOptions& itemOptions,
                                                     StatusItemHandlers itemHandlers) override {
    options = itemOptions;
    handlers = std::move(itemHandlers);
    hasItem = true;
    return std::make_unique<Item>(*this);
  }

 private:
  class Item : public StatusItem {
   public:
    explicit Item(ScriptedStatusBar& bar) : bar_(bar) {}
    ~Item() override {
      bar_.hasItem = false;
      bar_.handlers = {};
    }

    void setImage(const SymbolImage& image) override {
      bar_.image = image;
      ++bar_.images;
    }
    void setHighlighted(bool isHighlighted) override { bar_.isHighlighted = isHighlighted; }
    std::optional<Rect> frame() override { return bar_.frame; }
    void popUpMenu(std::vector<MenuItem> items) override { bar_.menus.push_back(std::move(items)); }

   private:
    ScriptedStatusBar& bar_;
  };
};

/// The titles of a menu, in order; "-" for a separator.
inline std::vector<std::string> menuTitles(const std::vector<MenuItem>& items) {
  std::vector<std::string> titles;
  for (const MenuItem& item : items) {
    titles.push_back(item.title.empty() ? "-" : item.title);
  }
  return titles;
}

}  // namespace plemora
