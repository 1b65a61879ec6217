#pragma once

#include <memory>
#include <string>

#include "platform/main_queue.h"
#include "platform/preferences.h"
#include "platform/user_defaults.h"

namespace plemora {

/// Settings that are preferences in a domain of the program's own, as a Mac keeps them. What
/// was set reaches the store a moment later, and before this goes. Main thread.
class PreferenceDefaults : public UserDefaults {
 public:
  /// The queue outlives it.
  PreferenceDefaults(std::unique_ptr<Preferences> preferences, std::string domain,
                     MainQueue& queue);
  ~PreferenceDefaults() override;
  PreferenceDefaults(const PreferenceDefaults&) = delete;
  PreferenceDefaults& operator=(const PreferenceDefaults&) = delete;

  std::optional<bool> boolean(const std::string& key) override;
  std::optional<std::string> string(const std::string& key) override;
  std::optional<std::string> data(const std::string& key) override;

  void setBoolean(const std::string& key, bool value) override { set(key, value); }
  void setString(const std::string& key, const std::string& value) override { set(key, value); }
  void setData(const std::string& key, const std::string& bytes) override {
    set(key, PreferenceData{bytes});
  }
  void remove(const std::string& key) override { set(key, std::nullopt); }

 private:
  static constexpr double storeDelay = 0.2;  // seconds

  std::optional<PreferenceValue> value(const std::string& key);
  void set(const std::string& key, const std::optional<PreferenceValue>& value);

  const std::unique_ptr<Preferences> preferences_;
  const std::string domain_;
  MainQueue& queue_;
  Timer storing_;
};

}  // namespace plemora
