#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "adapters/stage/desktop/stage_window_record.h"
#include "platform/status_bar.h"

namespace plemora {

/// The menu that is popped up at a status item, if any: a window of its own. A press beside it
/// closes it and goes no further. Main thread.
class StageMenu {
 public:
  static constexpr double width = 280;
  static constexpr double itemHeight = 22;
  static constexpr double separatorHeight = 11;
  static constexpr double padding = 5;  ///< above the first and below the last item

  explicit StageMenu(StageWindowNumbers& numbers) : numbers_(numbers) {}

  /// Shows the items with the menu's top left corner there (global, y up), or as far left as the
  /// screen asks; whose process it belongs to.
  void open(std::vector<MenuItem> items, const Point& topLeft, const Rect& screen, std::int32_t pid,
            std::string ownerName);
  void close();

  bool isOpen() const { return isOpen_; }
  const std::vector<MenuItem>& items() const { return items_; }
  std::vector<std::string> titles() const;
  const Rect& frame() const { return frame_; }  ///< global, y up
  Rect itemFrame(std::size_t index) const;      ///< global, y up
  std::optional<std::size_t> itemAt(const Point& location) const;
  /// Index of the one under the pointer.
  std::optional<std::size_t> highlighted() const { return highlighted_; }

  /// Closes the menu and does what the item says. False when there is no such title.
  bool choose(const std::string& title);

  void appendWindow(std::vector<StageWindowRecord>& windows);
  void pointer(const StagePointerEvent& event);

 private:
  void choose(std::size_t index);

  StageWindowNumbers& numbers_;
  bool isOpen_ = false;
  std::vector<MenuItem> items_;
  Rect frame_;
  std::int64_t number_ = 0;
  std::int32_t pid_ = -1;
  std::string ownerName_;
  std::optional<std::size_t> highlighted_;
};

}  // namespace plemora
