#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "adapters/files/file_operations.h"
#include "base/property_list.h"
#include "platform/preferences.h"

namespace plemora {

/// Preferences as a Mac keeps them: a property list for each domain, "DOMAIN.plist" in the folder
/// for every machine and "ByHost/DOMAIN.HOST.plist" for one. Keys that are not set here stay as
/// they are. A file that cannot be read or understood is left alone: its keys read as none, and
/// synchronize fails. Several programs may read and write the same files, but what two of them
/// store in the same moment is not merged. Main thread.
class PropertyListPreferences : public Preferences {
 public:
  /// The folder's path is absolute; it need not exist. host: this machine's name in file names.
  PropertyListPreferences(std::filesystem::path folder, std::string host,
                          std::shared_ptr<FileOperations> operations = makeFileOperations());

  std::optional<PreferenceValue> value(const std::string& key, const std::string& domain,
                                       PreferenceHost host) override;
  /// An OtherPreference cannot be stored and changes nothing.
  void setValue(const std::string& key, const std::optional<PreferenceValue>& value,
                const std::string& domain, PreferenceHost host) override;
  bool synchronize(const std::string& domain, PreferenceHost host) override;
  std::optional<PreferenceValue> appValue(const std::string& key,
                                          const std::string& domain) override;
  bool appSynchronize(const std::string& domain) override;

 private:
  using Changes = std::map<std::string, std::optional<PreferenceValue>>;

  std::filesystem::path fileOf(const std::string& domain, PreferenceHost host) const;
  /// The file's dictionary, empty when there is no file; none when it cannot be read.
  std::optional<PropertyList> load(const std::filesystem::path& file);

  std::filesystem::path folder_;
  std::string host_;
  std::shared_ptr<FileOperations> operations_;
  std::map<std::pair<std::string, PreferenceHost>, Changes> waiting_;
};

}  // namespace plemora
