#include "adapters/stage/desktop/stage_prompt.h"

#include "adapters/stage/desktop/stage_program.h"
#include "adapters/stage/scripted_consent.h"

namespace plemora {

bool StagePrompt::isOpen() const {
  return consent_.openRequests() > 0 && !screens_.screens().get().empty();
}

std::string StagePrompt::text() const {
  return "“" + program_.name() + "” would like to record this computer’s audio.";
}

void StagePrompt::answer(bool isAllowed) {
  if (isOpen()) {
    consent_.decide(isAllowed);
  }
}

Rect StagePrompt::frame() const {
  if (screens_.screens().get().empty()) {
    return {};
  }
  const Rect& screen = screens_.screens().get()[0].frame;
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
