#include "adapters/stage/scripted_accessibility.h"

#include <mutex>
#include <optional>
#include <utility>

namespace plemora {

struct ScriptedAccessibility::World {
  struct Element {
    Attributes attributes;
    std::map<std::string, std::function<void()>> actions;
  };

  std::mutex mutex;  // guards everything below
  bool isTrusted = true;
  std::uint64_t lastElement = 0;
  std::map<ElementID, Element> elements;
  std::map<std::int32_t, ElementID> applications;
  std::function<void(const std::string&)> hook;

  ElementID make(Attributes attributes = {}) {
    const auto element = static_cast<ElementID>(++lastElement);
    elements[element].attributes = std::move(attributes);
    return element;
  }

  /// Not locked.
  void callHook(const std::string& name) {
    std::unique_lock lock(mutex);
    const auto called = hook;
    lock.unlock();
    if (called) {
      called(name);
    }
  }

  /// Null while there is no trust and for an element that is gone.
  Element* find(ElementID element) {
    const auto found = elements.find(element);
    return isTrusted && found != elements.end() ? &found->second : nullptr;
  }

  void remove(ElementID element) {
    std::vector<ElementID> left = {element};
    while (!left.empty()) {
      const auto node = elements.extract(left.back());
      left.pop_back();
      if (!node) {
        continue;
      }
      for (const auto& [name, value] : node.mapped().attributes) {
        if (const auto* list = std::get_if<std::vector<ElementID>>(&value)) {
          left.insert(left.end(), list->begin(), list->end());
        }
      }
    }
  }
};

class ScriptedAccessibility::Reference : public AccessibilityElement {
 public:
  Reference(std::shared_ptr<World> world, ElementID element)
      : world_(std::move(world)), element_(element) {}

  std::optional<AccessibilityValue> attribute(const std::string& name) override {
    world_->callHook(name);
    const std::lock_guard lock(world_->mutex);
    const World::Element* element = world_->find(element_);
    if (element == nullptr) {
      return std::nullopt;
    }
    const auto found = element->attributes.find(name);
    if (found == element->attributes.end()) {
      return std::nullopt;
    }
    return std::visit([this](const auto& value) { return given(value); }, found->second);
  }

  bool perform(const std::string& action) override {
    world_->callHook(action);
    std::function<void()> handler;
    {
      const std::lock_guard lock(world_->mutex);
      const World::Element* element = world_->find(element_);
      if (element == nullptr) {
        return false;
      }
      const auto found = element->actions.find(action);
      if (found == element->actions.end()) {
        return false;
      }
      handler = found->second;
    }
    handler();
    return true;
  }

 private:
  template <typename T>
  AccessibilityValue given(const T& value) const {
    return value;
  }
  AccessibilityValue given(ElementID element) const { return reference(element); }
  AccessibilityValue given(const std::vector<ElementID>& elements) const {
    std::vector<AccessibilityElementPointer> references;
    references.reserve(elements.size());
    for (const ElementID element : elements) {
      references.push_back(reference(element));
    }
    return references;
  }
  AccessibilityElementPointer reference(ElementID element) const {
    return element == ElementID::none ? nullptr : std::make_shared<Reference>(world_, element);
  }

  const std::shared_ptr<World> world_;
  const ElementID element_;
};

ScriptedAccessibility::ScriptedAccessibility() : world_(std::make_shared<World>()) {}

// References may outlive it; what its actions and its hook stand for may not.
ScriptedAccessibility::~ScriptedAccessibility() {
  std::unique_lock lock(world_->mutex);
  const auto elements = std::exchange(world_->elements, {});
  const auto hook = std::exchange(world_->hook, nullptr);
  lock.unlock();
}

bool ScriptedAccessibility::isTrusted() {
  const std::lock_guard lock(world_->mutex);
  return world_->isTrusted;
}

AccessibilityElementPointer ScriptedAccessibility::application(std::int32_t pid) {
  const std::lock_guard lock(world_->mutex);
  const auto found = world_->applications.find(pid);
  return std::make_shared<Reference>(
      world_, found == world_->applications.end() ? ElementID::none : found->second);
}

std::unique_ptr<AccessibilityObserver> ScriptedAccessibility::observe(
    std::int32_t pid, const std::vector<std::string>& notifications,
    std::function<void()> handler) {
  return refusesObservers || !isTrusted() ? nullptr
                                          : observers_.add(pid, notifications, std::move(handler));
}

void ScriptedAccessibility::setTrusted(bool isTrusted) {
  const std::lock_guard lock(world_->mutex);
  world_->isTrusted = isTrusted;
}

ScriptedAccessibility::ElementID ScriptedAccessibility::root(std::int32_t pid) {
  const std::lock_guard lock(world_->mutex);
  const auto [place, isNew] = world_->applications.try_emplace(pid);
  if (isNew) {
    place->second = world_->make();
  }
  return place->second;
}

void ScriptedAccessibility::removeApplication(std::int32_t pid) {
  const std::lock_guard lock(world_->mutex);
  if (const auto node = world_->applications.extract(pid)) {
    world_->remove(node.mapped());
  }
}

ScriptedAccessibility::ElementID ScriptedAccessibility::make(Attributes attributes) {
  const std::lock_guard lock(world_->mutex);
  return world_->make(std::move(attributes));
}

ScriptedAccessibility::ElementID ScriptedAccessibility::add(ElementID parent,
                                                            const std::string& list,
                                                            Attributes attributes) {
  const std::lock_guard lock(world_->mutex);
  const ElementID element = world_->make(std::move(attributes));
  Value& value = world_->elements[parent].attributes[list];
  if (!std::holds_alternative<std::vector<ElementID>>(value)) {
    value = std::vector<ElementID>();
  }
  std::get<std::vector<ElementID>>(value).push_back(element);
  return element;
}

void ScriptedAccessibility::remove(ElementID element) {
  const std::lock_guard lock(world_->mutex);
  world_->remove(element);
}

void ScriptedAccessibility::set(ElementID element, const std::string& attribute, Value value) {
  const std::lock_guard lock(world_->mutex);
  world_->elements[element].attributes[attribute] = std::move(value);
}

void ScriptedAccessibility::setFrame(ElementID element, const Rect& frame) {
  const std::lock_guard lock(world_->mutex);
  Attributes& attributes = world_->elements[element].attributes;
  attributes["AXPosition"] = frame.origin();
  attributes["AXSize"] = frame.size();
}

void ScriptedAccessibility::clear(ElementID element, const std::string& attribute) {
  const std::lock_guard lock(world_->mutex);
  world_->elements[element].attributes.erase(attribute);
}

void ScriptedAccessibility::setAction(ElementID element, const std::string& action,
                                      std::function<void()> handler) {
  const std::lock_guard lock(world_->mutex);
  world_->elements[element].actions[action] = std::move(handler);
}

AccessibilityElementPointer ScriptedAccessibility::reference(ElementID element) {
  return std::make_shared<Reference>(world_, element);
}

void ScriptedAccessibility::setHook(std::function<void(const std::string&)> hook) {
  const std::lock_guard lock(world_->mutex);
  world_->hook = std::move(hook);
}

}  // namespace plemora
