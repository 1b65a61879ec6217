#include "adapters/stage/desktop/stage_accessibility.h"

#include <utility>

namespace plemora {

struct StageAccessibility::State {
  bool isTrusted = true;
  int calls = 0;
  std::function<void(int)> beforeCall;
  std::map<std::int32_t, AccessibilityElementPointer> applications;

  /// Whether the call may be answered.
  bool enter() {
    const int call = ++calls;
    if (beforeCall) {
      // A copy, since it may replace itself.
      const auto before = beforeCall;
      before(call);
    }
    return isTrusted;
  }
};

/// An element as the program holds it: asks for the user's trust whenever it is used, and so do the
/// elements that it hands out.
class StageAccessibility::Element : public AccessibilityElement {
 public:
  Element(std::weak_ptr<State> state, AccessibilityElementPointer inner)
      : state_(std::move(state)), inner_(std::move(inner)) {}

  std::optional<AccessibilityValue> attribute(const std::string& name) override {
    const auto state = state_.lock();
    if (!state || !state->enter() || !inner_) {
      return std::nullopt;
    }
    auto value = inner_->attribute(name);
    if (value) {
      wrap(*value);
    }
    return value;
  }

  bool perform(const std::string& action) override {
    const auto state = state_.lock();
    return state && state->enter() && inner_ && inner_->perform(action);
  }

 private:
  void wrap(AccessibilityValue& value) const {
    const auto wrapped = [this](AccessibilityElementPointer& element) {
      element = std::make_shared<Element>(state_, std::move(element));
    };
    if (auto* element = std::get_if<AccessibilityElementPointer>(&value)) {
      wrapped(*element);
    } else if (auto* elements = std::get_if<std::vector<AccessibilityElementPointer>>(&value)) {
      for (auto& one : *elements) {
        wrapped(one);
      }
    }
  }

  std::weak_ptr<State> state_;
  AccessibilityElementPointer inner_;  // null: of a process that is not there
};

StageAccessibility::StageAccessibility() : state_(std::make_shared<State>()) {}

StageAccessibility::~StageAccessibility() = default;

void StageAccessibility::setTrusted(bool isTrusted) {
  state_->isTrusted = isTrusted;
  isAsking_ = isAsking_ && !isTrusted;
}

void StageAccessibility::setBeforeCall(std::function<void(int call)> beforeCall) {
  state_->beforeCall = std::move(beforeCall);
}

int StageAccessibility::calls() const {
  return state_->calls;
}

void StageAccessibility::setApplication(std::int32_t pid, AccessibilityElementPointer element) {
  if (element) {
    state_->applications[pid] = std::move(element);
  } else {
    state_->applications.erase(pid);
  }
}

bool StageAccessibility::isTrusted() {
  return state_->isTrusted;
}

bool StageAccessibility::requestTrust() {
  isAsking_ = isAsking_ || !state_->isTrusted;
  return state_->isTrusted;
}

AccessibilityElementPointer StageAccessibility::application(std::int32_t pid) {
  const auto found = state_->applications.find(pid);
  return std::make_shared<Element>(state_,
                                   found == state_->applications.end() ? nullptr : found->second);
}

std::unique_ptr<AccessibilityObserver> StageAccessibility::observe(
    std::int32_t pid, const std::vector<std::string>& notifications,
    std::function<void()> handler) {
  if (!state_->isTrusted || !state_->applications.contains(pid)) {
    return nullptr;
  }
  return observers_.add(pid, notifications, std::move(handler));
}

void StageAccessibility::notify(std::int32_t pid, const std::string& notification) {
  if (state_->isTrusted) {
    observers_.notify(pid, notification);
  }
}

}  // namespace plemora
