#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "adapters/stage/desktop/stage_menu.h"
#include "adapters/stage/desktop/stage_status_item.h"
#include "adapters/stage/desktop/stage_window_record.h"
#include "platform/screens.h"
#include "platform/status_bar.h"

namespace plemora {

/// The menu bar: on every screen, with its items on the main one. Each item is a window of its own,
/// of the process that has put it there. Main thread.
/// Its items may outlive it; the screens outlive it.
class StageMenuBar : public StatusBar, public StageWindowOwner {
 public:
  static constexpr int windowLevel = 24;  ///< kCGMainMenuWindowLevel

  /// identity: process identifier and name of the program, for the items that it makes.
  StageMenuBar(Screens& screens, StageWindowNumbers& numbers,
               std::function<std::pair<std::int32_t, std::string>()> identity);
  ~StageMenuBar() override;
  StageMenuBar(const StageMenuBar&) = delete;
  StageMenuBar& operator=(const StageMenuBar&) = delete;

  /// Puts up an extra of the system, until the result is dropped.
  [[nodiscard]] std::shared_ptr<StageStatusItem> addExtra(StageStatusItem item);

  /// From right to left, each with its frame as it is now.
  std::vector<std::shared_ptr<StageStatusItem>> items();
  /// The item of that accessibility identifier (empty: of the program); null: there is none.
  std::shared_ptr<StageStatusItem> extra(const std::string& identifier);
  StageMenu& menu() { return menu_; }
  double height() const;  ///< of the bar on the main screen, in points

  [[nodiscard]] std::unique_ptr<StatusItem> makeItem(const StatusItemOptions& options,
                                                     StatusItemHandlers handlers) override;

  void appendWindows(std::vector<StageWindowRecord>& windows) override;
  void pointer(const StageWindowRecord& window, const StagePointerEvent& event) override;
  void scroll(const StageWindowRecord& window, const StageScrollEvent& event) override;
  bool pressedElsewhere(const StageWindowRecord* hit) override;
  std::int64_t keyOrder() override;
  void key(const StageKeyEvent& event) override;

 private:
  class ProgramItem;

  /// Puts every item where it belongs; from right to left.
  std::vector<std::shared_ptr<StageStatusItem>> layOut();
  std::shared_ptr<StageStatusItem> itemOf(const StageWindowRecord& window);
  void popUp(const std::shared_ptr<StageStatusItem>& item, std::vector<MenuItem> items);

  Screens& screens_;
  StageWindowNumbers& numbers_;
  std::function<std::pair<std::int32_t, std::string>()> identity_;
  StageMenu menu_;
  std::weak_ptr<StageStatusItem> menuItem_;            // that the menu was popped up at
  std::vector<std::weak_ptr<StageStatusItem>> items_;  // in the order in which they came
  std::vector<std::int64_t> barNumbers_;               // of the bars, by screen
  std::shared_ptr<StageMenuBar*> life_;  // what the program's items know it by; holds null at last
};

}  // namespace plemora
