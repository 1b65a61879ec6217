#pragma once

#include <memory>
#include <vector>

#include "platform/display_link.h"
#include "platform/main_queue.h"

namespace plemora {

/// Display links that tick by the timers of a main queue, so by its clock. Main thread; the queue
/// outlives the links.
class VirtualDisplayLinks : public DisplayLinks {
 public:
  explicit VirtualDisplayLinks(MainQueue& queue, double refreshRate = 60)
      : queue_(queue), refreshRate_(refreshRate) {}

  [[nodiscard]] std::unique_ptr<DisplayLink> makeLink(int screen,
                                                      std::function<void()> tick) override;

  /// The screen of every link made, in order.
  std::vector<int> screens;

 private:
  class Link;

  MainQueue& queue_;
  double refreshRate_;
};

}  // namespace plemora
