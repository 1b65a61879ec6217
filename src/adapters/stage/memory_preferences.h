#pragma once

#include <map>
#include <memory>
#include <string>
#include <utility>

#include "platform/preferences.h"

namespace plemora {

/// What is stored of preferences, as a disk would hold it. Several MemoryPreferences may share one
/// as several programs share a machine.
class PreferenceStore {
 public:
  using Values = std::map<std::string, PreferenceValue>;

  Values& values(const std::string& domain, PreferenceHost host) { return files_[{domain, host}]; }

 private:
  std::map<std::pair<std::string, PreferenceHost>, Values> files_;
};

/// Preferences in memory. What was set is another program's to see only after synchronize, and is
/// lost with this object before that. Main thread.
class MemoryPreferences : public Preferences {
 public:
  explicit MemoryPreferences(
      std::shared_ptr<PreferenceStore> store = std::make_shared<PreferenceStore>());

  std::optional<PreferenceValue> value(const std::string& key, const std::string& domain,
                                       PreferenceHost host) override;
  void setValue(const std::string& key, const std::optional<PreferenceValue>& value,
                const std::string& domain, PreferenceHost host) override;
  bool synchronize(const std::string& domain, PreferenceHost host) override;
  std::optional<PreferenceValue> appValue(const std::string& key,
                                          const std::string& domain) override;
  bool appSynchronize(const std::string& domain) override;

 private:
  using Changes = std::map<std::string, std::optional<PreferenceValue>>;

  std::shared_ptr<PreferenceStore> store_;
  std::map<std::pair<std::string, PreferenceHost>, Changes> waiting_;
};

}  // namespace plemora
