#include "adapters/stage/scripted_input_events.h"

#include <algorithm>
#include <utility>

namespace plemora {

struct ScriptedInputEvents::Watch {
  bool isGlobal = false;
  unsigned mask = 0;
  std::function<bool(const InputEvent&)> handler;
};

class ScriptedInputEvents::Hold : public EventMonitor {
 public:
  explicit Hold(std::shared_ptr<Watch> watch) : watch_(std::move(watch)) {}

 private:
  std::shared_ptr<Watch> watch_;
};

std::unique_ptr<EventMonitor> ScriptedInputEvents::add(
    bool isGlobal, unsigned mask, std::function<bool(const InputEvent&)> handler) {
  auto watch = std::make_shared<Watch>(Watch{isGlobal, mask, std::move(handler)});
  watches_.push_back(watch);
  return std::make_unique<Hold>(std::move(watch));
}

std::unique_ptr<EventMonitor> ScriptedInputEvents::monitorGlobal(
    unsigned mask, std::function<void(const InputEvent&)> handler) {
  return add(true, mask, [handler = std::move(handler)](const InputEvent& event) {
    handler(event);
    return false;
  });
}

std::unique_ptr<EventMonitor> ScriptedInputEvents::monitorLocal(
    unsigned mask, std::function<bool(const InputEvent&)> handler) {
  return add(false, mask, std::move(handler));
}

void ScriptedInputEvents::sendElsewhere(const InputEvent& event) {
  pointer = event.location;
  send(true, event);
}

bool ScriptedInputEvents::sendHere(const InputEvent& event) {
  return send(false, event);
}

bool ScriptedInputEvents::send(bool isGlobal, const InputEvent& event) {
  const auto round = watches_;
  const unsigned bit = 1u << static_cast<unsigned>(event.type);
  return std::ranges::any_of(round, [&](const std::weak_ptr<Watch>& weak) {
    const auto watch = weak.lock();
    return watch && watch->isGlobal == isGlobal && (watch->mask & bit) != 0 &&
           watch->handler(event);
  });
}

int ScriptedInputEvents::monitorCount() const {
  return static_cast<int>(
      std::ranges::count_if(watches_, [](const auto& watch) { return !watch.expired(); }));
}

}  // namespace plemora
