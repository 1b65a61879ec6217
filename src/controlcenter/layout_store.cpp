#include "controlcenter/layout_store.h"

#include <optional>
#include <variant>

#include "controlcenter/control_center_layout.h"
#include "controlcenter/mixer_control.h"

namespace plemora {

namespace {

/// One of the two values: where it is stored.
class Slot {
 public:
  Slot(Preferences& preferences, const char* key, const char* domain, PreferenceHost host)
      : preferences_(preferences), key_(key), domain_(domain), host_(host) {}

  std::optional<std::string> read() {
    const auto value = preferences_.value(key_, domain_, host_);
    const auto* data = value ? std::get_if<PreferenceData>(&*value) : nullptr;
    return data ? std::optional(data->bytes) : std::nullopt;
  }

  /// Whether it is on disk and reads as what was stored.
  bool store(const std::string& bytes) {
    preferences_.setValue(key_, PreferenceData{bytes}, domain_, host_);
    return preferences_.synchronize(domain_, host_) && read() == bytes;
  }

 private:
  Preferences& preferences_;
  const char* key_;
  const char* domain_;
  PreferenceHost host_;
};

Slot controlsSlot(Preferences& preferences) {
  return {preferences, controlsKey, ControlCenterLayout::mainDomain, PreferenceHost::any};
}

Slot boxesSlot(Preferences& preferences) {
  return {preferences, ControlCenterLayout::boxesKey, ControlCenterLayout::layoutDomain,
          PreferenceHost::current};
}

}  // namespace

StoredLayout readStoredLayout(Preferences& preferences) {
  const auto boxes = boxesSlot(preferences).read();
  const auto controls = boxes ? controlsSlot(preferences).read() : std::nullopt;
  if (!controls) {
    throw ControlCenterLayout::Failure(ControlCenterLayout::Failure::unreadable);
  }
  return {*controls, *boxes};
}

void writeStoredLayout(Preferences& preferences, const StoredLayout& layout, StoreOrder order) {
  const bool controlsLead = order == StoreOrder::controlsFirst;
  Slot controls = controlsSlot(preferences);
  Slot boxes = boxesSlot(preferences);
  Slot& first = controlsLead ? controls : boxes;
  Slot& second = controlsLead ? boxes : controls;
  const auto firstBefore = first.read();
  const auto secondBefore = second.read();

  if (first.store(controlsLead ? layout.controls : layout.boxes)) {
    if (second.store(controlsLead ? layout.boxes : layout.controls)) {
      return;
    }
    // The first goes back only when the second is known to: never the second alone.
    if (secondBefore && second.store(*secondBefore) && firstBefore) {
      first.store(*firstBefore);
    }
  } else if (firstBefore) {
    first.store(*firstBefore);
  }
  throw ControlCenterLayout::NotStored("Control Center's layout couldn't be saved.");
}

}  // namespace plemora
