#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "platform/input_events.h"

namespace plemora {

/// Pointer and keyboard in the hands of a script. Main thread; monitors may outlive it.
class ScriptedInputEvents : public InputEvents {
 public:
  Point pointer;
  unsigned pressedButtons = 0;  ///< as pressedMouseButtons() gives them
  std::vector<int> postedKeys;  ///< codes, in order

  /// The event goes to another application.
  void sendElsewhere(const InputEvent& event);
  /// The event is for a window of this program; true when a monitor swallowed it.
  bool sendHere(const InputEvent& event);

  int globalMonitors() const { return count(true); }
  int localMonitors() const { return count(false); }

  [[nodiscard]] std::unique_ptr<EventMonitor> monitorGlobal(
      unsigned mask, std::function<void(const InputEvent&)> handler) override;
  [[nodiscard]] std::unique_ptr<EventMonitor> monitorLocal(
      unsigned mask, std::function<bool(const InputEvent&)> handler) override;
  Point pointerLocation() override { return pointer; }
  unsigned pressedMouseButtons() override { return pressedButtons; }
  void postKey(int keyCode) override { postedKeys.push_back(keyCode); }

 private:
  struct Handler {
    bool isGlobal;
    unsigned mask;
    std::function<bool(const InputEvent&)> swallows;
  };
  class Monitor;

  std::unique_ptr<EventMonitor> add(Handler handler);
  bool send(const InputEvent& event, bool isGlobal);
  int count(bool isGlobal) const;

  std::vector<std::weak_ptr<Handler>> handlers_;
};

}  // namespace plemora
