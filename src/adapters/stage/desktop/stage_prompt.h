#pragma once

#include <cstdint>
#include <string>

#include "adapters/stage/desktop/stage_window_record.h"
#include "platform/screens.h"

namespace plemora {

class ScriptedConsent;
class StageProgram;

/// The system's question whether the program may record audio: on screen while a request for
/// consent is open. Main thread; what it is given outlives it.
class StagePrompt : public StageWindowOwner {
 public:
  static constexpr int windowLevel = 8;  ///< kCGModalPanelWindowLevel
  static constexpr double width = 260;
  static constexpr double height = 200;

  StagePrompt(ScriptedConsent& consent, Screens& screens, StageProgram& program,
              StageWindowNumbers& numbers)
      : consent_(consent), screens_(screens), program_(program), number_(numbers.next()) {}

  bool isOpen() const;
  std::string text() const;
  void answer(bool isAllowed);

  Rect frame() const;        ///< global, y up
  Rect allowButton() const;  ///< global, y up
  Rect denyButton() const;   ///< global, y up

  void appendWindows(std::vector<StageWindowRecord>& windows) override;
  void pointer(const StageWindowRecord& window, const StagePointerEvent& event) override;

 private:
  ScriptedConsent& consent_;
  Screens& screens_;
  StageProgram& program_;
  std::int64_t number_;
};

}  // namespace plemora
