#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "adapters/stage/observer_list.h"
#include "platform/accessibility.h"

namespace plemora {

/// What becomes of a call to an element.
enum class StageAnswer {
  given,
  refused,   ///< this once
  vanished,  ///< the element is gone for good; whoever looks for it again finds another one
};

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
  /// Asked before each attribute is read and each action is performed, with its name and the
  /// number of such calls so far. It may change the stage: so do things vanish half way. None:
  /// every call is answered.
  void setGate(std::function<StageAnswer(const std::string& name, int call)> gate);
  int calls() const;

  /// The elements of a process are these, until none is given.
  void setApplication(std::int32_t pid, AccessibilityElementPointer element);

  /// Whether the user is being asked for trust.
  bool isAsking() const { return isAsking_; }
  /// The user has seen the question.
  void endAsking() { isAsking_ = false; }

  bool isTrusted() override;
  bool requestTrust() override;
  AccessibilityElementPointer application(std::int32_t pid) override;
  /// Refused without trust, and for a process that has no elements.
  [[nodiscard]] std::unique_ptr<AccessibilityObserver> observe(
      std::int32_t pid, const std::vector<std::string>& notifications,
      std::function<void()> handler) override;

  /// The process says so to those who observe it, as long as there is trust.
  void notify(std::int32_t pid, const std::string& notification);
  /// How many observe processes.
  int observers() const { return observers_.count(); }

 private:
  struct State;
  class Element;

  std::shared_ptr<State> state_;
  ObserverList observers_;
  bool isAsking_ = false;
};

}  // namespace plemora
