#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "adapters/stage/desktop/stage_window_server.h"
#include "adapters/stage/scripted_input_events.h"

namespace plemora {

/// Pointer and keyboard of the stage. Takes each event to the process whose window it is for: the
/// program's own past its local monitors, which may swallow it, everybody else's past its global
/// ones. Main thread; the window server outlives it.
class StageInput : public ScriptedInputEvents {
 public:
  /// programPid: the process whose windows are "this program's".
  StageInput(StageWindowServer& server, std::function<std::int32_t()> programPid)
      : server_(server), programPid_(std::move(programPid)) {}

  /// Called once the left button is up, and everybody knows.
  std::function<void()> onReleased;

  void movePointer(const Point& location);
  void press(StageButton button = StageButton::left);
  void release(StageButton button = StageButton::left);
  void scroll(double dx, double dy, int steps);
  /// A key goes down and up, to who claimed the keyboard last.
  void key(int keyCode, const std::string& text = {}, unsigned modifiers = 0);

  void postKey(int keyCode) override;

 private:
  /// Tells the monitors that the pointer has moved. False when one swallowed that.
  bool reportMove(const std::optional<StageWindowRecord>& window);
  bool isProgram(const StageWindowRecord& window) const;
  /// False when a local monitor swallowed it.
  bool passesMonitors(const InputEvent& event, bool isForProgram);
  void deliver(const StageWindowRecord& window, StagePointerEvent::Phase phase, StageButton button);
  /// The window of that number as it is now.
  std::optional<StageWindowRecord> current(std::int64_t number);
  StageWindowOwner* keyboardOwner();

  StageWindowServer& server_;
  std::function<std::int32_t()> programPid_;
  std::optional<StageWindowRecord> grabbed_;  // by the button that is down
  StageButton grabButton_ = StageButton::left;
  bool wasSwallowed_ = false;                 // that press, by a local monitor
  std::optional<StageWindowRecord> entered_;  // under the pointer
};

}  // namespace plemora
