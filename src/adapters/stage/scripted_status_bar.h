#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/status_bar.h"

namespace plemora {

/// A menu bar with one item of ours, which a script clicks. Main thread.
class ScriptedStatusBar : public StatusBar {
 public:
  StatusItemOptions options;
  StatusItemHandlers handlers;      ///< of the item; call them as the user acts
  std::vector<SymbolImage> images;  ///< every one set, in order
  bool isHighlighted = false;
  std::optional<Rect> frame;   ///< of the item's button; none: it has no window
  std::vector<MenuItem> menu;  ///< the one popped up last
  int menusShown = 0;

  /// Chooses an item of the menu popped up last; false when it has none of that title.
  bool choose(const std::string& title) const { return choose(menu, title); }
  static bool choose(const std::vector<MenuItem>& items, const std::string& title) {
    for (const MenuItem& item : items) {
      if (item.title == title && item.action) {
        item.action();
        return true;
      }
    }
    return false;
  }

  [[nodiscard]] std::unique_ptr<StatusItem> makeItem(const StatusItemOptions& itemOptions,
                                                     StatusItemHandlers itemHandlers) override {
    options = itemOptions;
    handlers = std::move(itemHandlers);
    return std::make_unique<Item>(*this);
  }

 private:
  class Item : public StatusItem {
   public:
    explicit Item(ScriptedStatusBar& bar) : bar_(bar) {}
    ~Item() override { bar_.handlers = {}; }
    Item(const Item&) = delete;
    Item& operator=(const Item&) = delete;

    void setImage(const SymbolImage& image) override { bar_.images.push_back(image); }
    void setHighlighted(bool isHighlighted) override { bar_.isHighlighted = isHighlighted; }
    std::optional<Rect> frame() override { return bar_.frame; }
    void popUpMenu(std::vector<MenuItem> items) override {
      bar_.menu = std::move(items);
      ++bar_.menusShown;
    }

   private:
    ScriptedStatusBar& bar_;
  };
};

}  // namespace plemora
