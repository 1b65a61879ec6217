#include "adapters/stage/scripted_input_events.h"

#include <algorithm>
#include <utility>

namespace plemora {

class ScriptedInputEvents::Monitor : public EventMonitor {
 public:
  explicit Monitor(std::shared_ptr<Handler> handler) : handler_(std::move(handler)) {}

 private:
  std::shared_ptr<Handler> handler_;
};

void ScriptedInputEvents::sendElsewhere(const InputEvent& event) {
  send(event, true);
}

bool ScriptedInputEvents::sendHere(const InputEvent& event) {
  return send(event, false);
}

std::unique_ptr<EventMonitor> ScriptedInputEvents::monitorGlobal(
    unsigned mask, std::function<void(const InputEvent&)> handler) {
  return add({true, mask, [handler = std::move(handler)](const InputEvent& event) {
                handler(event);
                return false;
              }});
}

std::unique_ptr<EventMonitor> ScriptedInputEvents::monitorLocal(
    unsigned mask, std::function<bool(const InputEvent&)> handler) {
  return add({false, mask, std::move(handler)});
}

std::unique_ptr<EventMonitor> ScriptedInputEvents::add(Handler handler) {
  auto hold = std::make_shared<Handler>(std::move(handler));
  handlers_.push_back(hold);
  return std::make_unique<Monitor>(std::move(hold));
}

bool ScriptedInputEvents::send(const InputEvent& event, bool isGlobal) {
  const unsigned bit = 1u << static_cast<unsigned>(event.type);
  // A snapshot: handlers come and go while the event is on its way.
  const auto round = handlers_;
  for (const auto& weak : round) {
    const auto handler = weak.lock();
    if (handler && handler->isGlobal == isGlobal && (handler->mask & bit) != 0 &&
        handler->swallows(event)) {
      return true;
    }
  }
  return false;
}

int ScriptedInputEvents::count(bool isGlobal) const {
  return static_cast<int>(std::ranges::count_if(handlers_, [isGlobal](const auto& weak) {
    const auto handler = weak.lock();
    return handler && handler->isGlobal == isGlobal;
  }));
}

}  // namespace plemora
