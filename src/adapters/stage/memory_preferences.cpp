#include "adapters/stage/memory_preferences.h"

#include <utility>

namespace plemora {

MemoryPreferences::MemoryPreferences(std::shared_ptr<PreferenceStore> store)
    : store_(std::move(store)) {}

std::optional<PreferenceValue> MemoryPreferences::value(const std::string& key,
                                                        const std::string& domain,
                                                        PreferenceHost host) {
  const Changes& changes = waiting_[{domain, host}];
  if (const auto changed = changes.find(key); changed != changes.end()) {
    return changed->second;
  }
  const PreferenceStore::Values& values = store_->values(domain, host);
  const auto found = values.find(key);
  return found == values.end() ? std::nullopt : std::optional(found->second);
}

void MemoryPreferences::setValue(const std::string& key,
                                 const std::optional<PreferenceValue>& value,
                                 const std::string& domain, PreferenceHost host) {
  waiting_[{domain, host}][key] = value;
}

bool MemoryPreferences::synchronize(const std::string& domain, PreferenceHost host) {
  PreferenceStore::Values& values = store_->values(domain, host);
  for (const auto& [key, value] : std::exchange(waiting_[{domain, host}], {})) {
    if (value) {
      values[key] = *value;
    } else {
      values.erase(key);
    }
  }
  return true;
}

std::optional<PreferenceValue> MemoryPreferences::appValue(const std::string& key,
                                                           const std::string& domain) {
  const auto own = value(key, domain, PreferenceHost::current);
  return own ? own : value(key, domain, PreferenceHost::any);
}

bool MemoryPreferences::appSynchronize(const std::string& domain) {
  const bool own = synchronize(domain, PreferenceHost::current);
  return synchronize(domain, PreferenceHost::any) && own;
}

}  // namespace plemora
