#pragma once

#include <cstdint>
#include <string>

#include "adapters/stage/desktop/stage_window_record.h"
#include "platform/screens.h"

namespace plemora {

class ScriptedConsent;
class StageAccessibility;
class StageProgram;
class StageSettings;

/// What the system's questions stand on. All of it outlives them.
struct StagePromptServices {
  ScriptedConsent& consent;
  StageAccessibility& accessibility;
  Screens& screens;
  StageProgram& program;
  StageSettings& settings;
};

/// The system's questions: whether the program may record audio, while a request for consent is
/// open, and whether it may use accessibility, which the user decides in System Settings. One at a
/// time. Main thread.
class StagePrompt : public StageWindowOwner {
 public:
  static constexpr int windowLevel = 8;  ///< kCGModalPanelWindowLevel
  static constexpr double width = 260;
  static constexpr double height = 200;

  StagePrompt(const StagePromptServices& services, StageWindowNumbers& numbers)
      : services_(services), number_(numbers.next()) {}

  bool isOpen() const;
  std::string text() const;
  std::string allowTitle() const;
  std::string denyTitle() const;
  void answer(bool isAllowed);

  Rect frame() const;        ///< global, y up
  Rect allowButton() const;  ///< global, y up
  Rect denyButton() const;   ///< global, y up

  void appendWindows(std::vector<StageWindowRecord>& windows) override;
  void pointer(const StageWindowRecord& window, const StagePointerEvent& event) override;

 private:
  bool isAboutAudio() const;

  const StagePromptServices services_;
  std::int64_t number_;
};

}  // namespace plemora
