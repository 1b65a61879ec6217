#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "adapters/stage/observer_list.h"
#include "platform/accessibility.h"

namespace plemora {

/// The interfaces of other applications as a script has them: elements with any attributes, which
/// may list each other in any way. What it hands out are references that read as nothing while
/// there is no trust and once their element is gone. Thread-safe.
class ScriptedAccessibility : public Accessibility {
 public:
  /// Names an element; never used again.
  enum class ElementID : std::uint64_t { none = 0 };
  /// As AccessibilityValue, with elements by their names. none reads as a null element.
  using Value =
      std::variant<bool, double, std::string, Point, Size, ElementID, std::vector<ElementID>>;
  using Attributes = std::map<std::string, Value>;

  ScriptedAccessibility();
  ~ScriptedAccessibility() override;

  bool isTrusted() override;
  bool requestTrust() override {
    ++trustRequests;
    return isTrusted();
  }
  int trustRequests = 0;
  AccessibilityElementPointer application(std::int32_t pid) override;
  [[nodiscard]] std::unique_ptr<AccessibilityObserver> observe(
      std::int32_t pid, const std::vector<std::string>& notifications,
      std::function<void()> handler) override;

  /// The application says so. Main thread.
  void notify(std::int32_t pid, const std::string& notification) {
    observers_.notify(pid, notification);
  }
  /// How many observe applications.
  int observers() const { return observers_.count(); }
  bool refusesObservers = false;

  /// At first there is trust.
  void setTrusted(bool isTrusted);

  /// The element of an application; made when it has none yet.
  ElementID root(std::int32_t pid);
  /// Ends the application: its element and all that hangs on it is gone.
  void removeApplication(std::int32_t pid);

  /// Makes an element that nobody lists yet.
  ElementID make(Attributes attributes = {});
  /// Makes an element and appends it to a list of the parent, such as "AXChildren".
  ElementID add(ElementID parent, const std::string& list, Attributes attributes = {});
  /// Takes an element away with all that it lists. Those who list it still do.
  void remove(ElementID element);
  void set(ElementID element, const std::string& attribute, Value value);
  /// Sets "AXPosition" and "AXSize"; points, y down.
  void setFrame(ElementID element, const Rect& frame);
  void clear(ElementID element, const std::string& attribute);
  /// The handler runs on the thread that performs the action.
  void setAction(ElementID element, const std::string& action, std::function<void()> handler);
  /// A reference as an application would hand it out.
  AccessibilityElementPointer reference(ElementID element);

  /// Called before every read and every action, on its thread, with the name of the attribute or
  /// action: to count them, or to change the world under the reader's hands. May call anything
  /// here.
  void setHook(std::function<void(const std::string&)> hook);

 private:
  struct World;
  class Reference;

  const std::shared_ptr<World> world_;
  ObserverList observers_;
};

}  // namespace plemora
