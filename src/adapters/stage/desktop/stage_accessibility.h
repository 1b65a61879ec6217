#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>

#include "platform/accessibility.h"

namespace plemora {

/// The interfaces of the stage's processes. Main thread, where the stage's queues run; elements may
/// outlive it, and whatever they stand for.
class StageAccessibility : public Accessibility {
 public:
  StageAccessibility();
  ~StageAccessibility() override;
  StageAccessibility(const StageAccessibility&) = delete;
  StageAccessibility& operator=(const StageAccessibility&) = delete;

  /// Whether the user lets the program use them; elements that it holds feel it at once.
  void setTrusted(bool isTrusted);
  /// Called before each attribute is read and each action is performed, with the number of such
  /// calls so far. It may change the stage: so do things vanish half way.
  void setBeforeCall(std::function<void(int call)> beforeCall);
  int calls() const;

  /// The elements of a process are these, until none is given.
  void setApplication(std::int32_t pid, AccessibilityElementPointer element);

  bool isTrusted() override;
  AccessibilityElementPointer application(std::int32_t pid) override;

 private:
  struct State;
  class Element;

  std::shared_ptr<State> state_;
};

}  // namespace plemora
