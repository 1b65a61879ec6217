#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "platform/input_events.h"

namespace plemora {

/// Pointer and keyboard of a script. Main thread.
class ScriptedInputEvents : public InputEvents {
 public:
  Point pointer;

  /// An event for another application.
  void sendElsewhere(const InputEvent& event);
  /// An event for one of this program's windows; true when a monitor has swallowed it.
  bool sendHere(const InputEvent& event);
  /// Monitors that watch now, to find forgotten ones.
  int monitorCount() const;

  [[nodiscard]] std::unique_ptr<EventMonitor> monitorGlobal(
      unsigned mask, std::function<void(const InputEvent&)> handler) override;
  [[nodiscard]] std::unique_ptr<EventMonitor> monitorLocal(
      unsigned mask, std::function<bool(const InputEvent&)> handler) override;
  Point pointerLocation() override { return pointer; }

 private:
  struct Watch;
  class Hold;

  std::unique_ptr<EventMonitor> add(bool isGlobal, unsigned mask,
                                    std::function<bool(const InputEvent&)> handler);
  bool send(bool isGlobal, const InputEvent& event);

  std::vector<std::weak_ptr<Watch>> watches_;
};

}  // namespace plemora
