#include "adapters/stage/desktop/stage_accessibility.h"

#include <utility>

namespace plemora {

struct StageAccessibility::State {
  bool isTrusted = true;
  int calls = 0;
  std::function<StageAnswer(const std::string&, int)> gate;
  std::map<std::int32_t, AccessibilityElementPointer> applications;

  StageAnswer answer(const std::string& name) {
    const int call = ++calls;
    const auto asked = gate;  // a copy, since it may replace itself
    const StageAnswer answer = asked ? asked(name, call) : StageAnswer::given;
    return answer == StageAnswer::given && !isTrusted ? StageAnswer::refused : answer;
  }
};

/// An element as the program holds it: asks for the user's trust whenever it is used, and so do the
/// elements that it hands out.
class StageAccessibility::Element : public AccessibilityElement {
 public:
  Element(std::weak_ptr<State> state, AccessibilityElementPointer inner)
      : state_(std::move(state)), inner_(std::move(inner)) {}

  std::optional<AccessibilityValue> attribute(const std::string& name) override {
    if (!mayAsk(name)) {
      return std::nullopt;
    }
    auto value = inner_->attribute(name);
    if (value) {
      wrap(*value);
    }
    return value;
  }

  bool perform(const std::string& action) override {
    return mayAsk(action) && inner_->perform(action);
  }

 private:
  bool mayAsk(const std::string& name) {
    const auto state = state_.lock();
    const StageAnswer answer = state ? state->answer(name) : StageAnswer::refused;
    if (answer == StageAnswer::vanished) {
      inner_.reset();
    }
    return answer == StageAnswer::given && inner_;
  }

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
  AccessibilityElementPointer inner_;  // null: what it stood for is not there
};

StageAccessibility::StageAccessibility() : state_(std::make_shared<State>()) {}

StageAccessibility::~StageAccessibility() = default;

void StageAccessibility::setTrusted(bool isTrusted) {
  state_->isTrusted = isTrusted;
  isAsking_ = isAsking_ && !isTrusted;
}

void StageAccessibility::setGate(
    std::function<StageAnswer(const std::string& name, int call)> gate) {
  state_->gate = std::move(gate);
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
