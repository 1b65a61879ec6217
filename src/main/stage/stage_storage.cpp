#include "main/stage/stage_storage.h"

#include <filesystem>
#include <utility>

#include "adapters/files/disk_files.h"
#include "adapters/files/property_list_preferences.h"
#include "adapters/stage/memory_files.h"
#include "adapters/stage/memory_preferences.h"

namespace plemora {

namespace {

/// What the program keeps for itself is on the disk; what the stage brings along is not.
class FilesBelowFolder : public Files {
 public:
  explicit FilesBelowFolder(std::string folder) : disk_(std::move(folder)) {}

  std::string applicationSupport() override { return disk_.applicationSupport(); }
  bool exists(const std::string& path) override { return at(path).exists(path); }
  std::optional<std::string> read(const std::string& path) override { return at(path).read(path); }
  bool writeAtomically(const std::string& path, const std::string& bytes) override {
    return at(path).writeAtomically(path, bytes);
  }
  bool remove(const std::string& path) override { return at(path).remove(path); }
  bool makeFolder(const std::string& path) override { return at(path).makeFolder(path); }

 private:
  Files& at(const std::string& path) {
    return path.starts_with(disk_.applicationSupport() + "/") ? static_cast<Files&>(disk_)
                                                              : memory_;
  }

  DiskFiles disk_;
  MemoryFiles memory_;
};

}  // namespace

StageStorage StageStorage::inMemory() {
  return {[store = std::make_shared<PreferenceStore>()] {
            return std::make_unique<MemoryPreferences>(store);
          },
          std::make_unique<MemoryFiles>()};
}

StageStorage StageStorage::inFolder(const std::string& folder, const std::string& host) {
  const auto whole = std::filesystem::absolute(folder).lexically_normal();
  return {[whole, host] { return std::make_unique<PropertyListPreferences>(whole, host); },
          std::make_unique<FilesBelowFolder>((whole / "Application Support").string())};
}

}  // namespace plemora
