#include "adapters/stage/desktop/stage_prompt.h"

#include "adapters/stage/desktop/stage_accessibility.h"
#include "adapters/stage/desktop/stage_program.h"
#include "adapters/stage/desktop/stage_settings.h"
#include "adapters/stage/scripted_consent.h"

namespace plemora {

bool StagePrompt::isAboutAudio() const {
  return services_.consent.openRequests() > 0;
}

bool StagePrompt::isOpen() const {
  return (isAboutAudio() || services_.accessibility.isAsking()) &&
         !services_.screens.screens().get().empty();
}

std::string StagePrompt::text() const {
  return "“" + services_.program.name() +
         (isAboutAudio() ? "” would like to record this computer’s audio."
                         : "” would like to control this computer using accessibility features.");
}

std::string StagePrompt::allowTitle() const {
  return isAboutAudio() ? "Allow" : "Open Settings";
}

std::string StagePrompt::denyTitle() const {
  return isAboutAudio() ? "Don’t Allow" : "Deny";
}

void StagePrompt::answer(bool isAllowed) {
  if (!isOpen()) {
    return;
  }
  if (isAboutAudio()) {
    services_.consent.decide(isAllowed);
    return;
  }
  services_.accessibility.endAsking();
  if (isAllowed) {
    services_.settings.show(StageSettings::Pane::accessibility);
  }
}

Rect StagePrompt::frame() const {
  if (services_.screens.screens().get().empty()) {
    return {};
  }
  const Rect& screen = services_.screens.screens().get()[0].frame;
  return {screen.midX() - width / 2, screen.midY() - height / 2 + 80, width, height};
}

Rect StagePrompt::allowButton() const {
  const Rect whole = frame();
  return {whole.midX() + 4, whole.minY() + 16, width / 2 - 20, 28};
}

Rect StagePrompt::denyButton() const {
  const Rect whole = frame();
  return {whole.minX() + 16, whole.minY() + 16, width / 2 - 20, 28};
}

void StagePrompt::appendWindows(std::vector<StageWindowRecord>& windows) {
  if (isOpen()) {
    windows.push_back({.kind = StageWindowKind::prompt,
                       .number = number_,
                       .order = number_,
                       .ownerName = "UserNotificationCenter",
                       .level = windowLevel,
                       .frame = frame(),
                       .solid = frame()});
  }
}

void StagePrompt::pointer(const StageWindowRecord& /*window*/, const StagePointerEvent& event) {
  if (event.phase != StagePointerEvent::Phase::released) {
    return;
  }
  if (allowButton().contains(event.location)) {
    answer(true);
  } else if (denyButton().contains(event.location)) {
    answer(false);
  }
}

}  // namespace plemora
