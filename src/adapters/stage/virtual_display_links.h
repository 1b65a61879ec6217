#pragma once

#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "platform/display_link.h"
#include "platform/main_queue.h"

namespace plemora {

/// Frames of displays by the time of a main queue, so with a virtual one nothing moves by itself.
/// Main thread; the queue outlives it.
class VirtualDisplayLinks : public DisplayLinks {
 public:
  explicit VirtualDisplayLinks(MainQueue& queue, double refreshRate = 60)
      : queue_(queue), refreshRate_(refreshRate) {}

  /// The screen that each link so far was made for, in order.
  const std::vector<int>& madeFor() const { return madeFor_; }

  [[nodiscard]] std::unique_ptr<DisplayLink> makeLink(int screen,
                                                      std::function<void()> tick) override {
    madeFor_.push_back(screen);
    return std::make_unique<Link>(queue_.every(1 / refreshRate_, std::move(tick)));
  }

 private:
  class Link : public DisplayLink {
   public:
    explicit Link(Timer timer) : timer_(std::move(timer)) {}

   private:
    Timer timer_;
  };

  MainQueue& queue_;
  double refreshRate_;
  std::vector<int> madeFor_;
};

}  // namespace plemora
