#include "adapters/stage/virtual_display_links.h"

#include <utility>

namespace plemora {

class VirtualDisplayLinks::Link : public DisplayLink {
 public:
  explicit Link(Timer timer) : timer_(std::move(timer)) {}

 private:
  Timer timer_;
};

std::unique_ptr<DisplayLink> VirtualDisplayLinks::makeLink(int screen, std::function<void()> tick) {
  screens.push_back(screen);
  return std::make_unique<Link>(queue_.every(1 / refreshRate_, std::move(tick)));
}

}  // namespace plemora
