#include "adapters/stage/preference_defaults.h"

#include <utility>
#include <variant>

#include "adapters/stage/memory_defaults.h"

namespace plemora {

namespace {

constexpr auto host = PreferenceHost::any;

}  // namespace

PreferenceDefaults::PreferenceDefaults(std::unique_ptr<Preferences> preferences, std::string domain,
                                       MainQueue& queue)
    : preferences_(std::move(preferences)), domain_(std::move(domain)), queue_(queue) {}

PreferenceDefaults::~PreferenceDefaults() {
  preferences_->synchronize(domain_, host);
}

std::optional<PreferenceValue> PreferenceDefaults::value(const std::string& key) {
  return preferences_->value(key, domain_, host);
}

std::optional<bool> PreferenceDefaults::boolean(const std::string& key) {
  const auto found = value(key);
  if (const auto* text = found ? std::get_if<std::string>(&*found) : nullptr) {
    return booleanWord(*text);
  }
  const auto* flag = found ? std::get_if<bool>(&*found) : nullptr;
  return flag ? std::optional(*flag) : std::nullopt;
}

std::optional<std::string> PreferenceDefaults::string(const std::string& key) {
  const auto found = value(key);
  const auto* text = found ? std::get_if<std::string>(&*found) : nullptr;
  return text ? std::optional(*text) : std::nullopt;
}

std::optional<std::string> PreferenceDefaults::data(const std::string& key) {
  const auto found = value(key);
  const auto* data = found ? std::get_if<PreferenceData>(&*found) : nullptr;
  return data ? std::optional(data->bytes) : std::nullopt;
}

void PreferenceDefaults::set(const std::string& key, const std::optional<PreferenceValue>& value) {
  preferences_->setValue(key, value, domain_, host);
  if (!storing_) {
    storing_ = queue_.after(storeDelay, [this] {
      storing_.reset();
      preferences_->synchronize(domain_, host);
    });
  }
}

}  // namespace plemora
