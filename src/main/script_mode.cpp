#include "main/script_mode.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <exception>
#include <filesystem>
#include <stdexcept>

#include "adapters/files/disk_files.h"
#include "adapters/files/preferences_host.h"
#include "adapters/files/property_list_preferences.h"
#include "adapters/linux/desktop/system_clock.h"
#include "controlcenter/control_center_layout.h"
#include "platform/workspace.h"

namespace plemora {

namespace {

namespace fs = std::filesystem;

/// There is no Control Center here that would have to be restarted.
class NoApplications : public Workspace {
 public:
  std::optional<RunningApplication> runningApplication(std::int32_t /*pid*/) override {
    return std::nullopt;
  }
  std::vector<RunningApplication> runningApplications() override { return {}; }
  std::optional<std::int32_t> responsiblePid(std::int32_t /*pid*/) override { return std::nullopt; }
  std::optional<InstalledApplication> installedApplication(const std::string& /*id*/) override {
    return std::nullopt;
  }
  Image genericApplicationIcon() override { return {}; }
  bool openURL(const std::string& /*url*/) override { return false; }
  [[nodiscard]] Subscription observeActivation(std::function<void(std::int32_t)>) override {
    return {};
  }
  bool forceTerminate(std::int32_t /*pid*/) override { return false; }
};

/// Held by one run of this program at a time for each folder.
class FolderLock {
 public:
  explicit FolderLock(const fs::path& folder)
      : descriptor_(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    if (descriptor_ < 0) {
      throw std::runtime_error("the folder " + folder.string() + " cannot be opened");
    }
    if (flock(descriptor_, LOCK_EX | LOCK_NB) != 0) {
      close(descriptor_);
      throw std::runtime_error("another run is changing the preferences in " + folder.string());
    }
  }
  ~FolderLock() { close(descriptor_); }
  FolderLock(const FolderLock&) = delete;
  FolderLock& operator=(const FolderLock&) = delete;

 private:
  int descriptor_;
};

void changeLayout(const ScriptOptions& options) {
  if (!options.preferences) {
    throw std::runtime_error(
        "there is no Control Center on this system; give the folder of the preferences that are "
        "to be changed with --preferences DIR");
  }
  const std::string host = preferencesHost(options.preferencesHost);
  const fs::path folder = fs::absolute(*options.preferences).lexically_normal();
  const FolderLock lock(folder);
  PropertyListPreferences preferences(folder, host);
  DiskFiles files((folder / "Application Support").string());
  SystemClock clock;
  NoApplications workspace;
  ControlCenterLayout layout(preferences, files, clock, workspace);
  if (options.action == ScriptAction::replaceSound) {
    layout.replaceSound();
  } else {
    layout.restore();
  }
}

}  // namespace

std::string runScript(const ScriptOptions& options) {
  if (options.action == ScriptAction::primeControls) {
    return "primed";  // nothing here would have to be entered and left
  }
  try {
    changeLayout(options);
    return "ok";
  } catch (const std::exception& error) {
    return std::string("failed: ") + error.what();
  }
}

}  // namespace plemora
