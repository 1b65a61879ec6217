#include "audio/audio_app_scanner.h"

#include <algorithm>
#include <set>
#include <utility>

#include "audio/objects/audio_object.h"

namespace plemora {

namespace {

bool isRegular(const RunningApplication& application) {
  return application.activationPolicy == ActivationPolicy::regular;
}

/// Finds the apps that answer for processes, asking the workspace for its list at most once.
class OwnerFinder {
 public:
  explicit OwnerFinder(Workspace& workspace) : workspace_(workspace) {}

  std::optional<RunningApplication> owningApp(std::int32_t pid) {
    const auto application = workspace_.runningApplication(pid);
    if (application && isRegular(*application)) {
      return application;
    }
    const auto responsible = workspace_.responsiblePid(pid);
    if (responsible && *responsible >= 1 && *responsible != pid) {
      const auto owner = workspace_.runningApplication(*responsible);
      if (owner && isRegular(*owner)) {
        return owner;
      }
    }
    if (application && application->bundleID) {
      return appWithPrefixOf(*application->bundleID);
    }
    return std::nullopt;
  }

 private:
  /// The app org.example.Browser owns org.example.Browser.Renderer.
  std::optional<RunningApplication> appWithPrefixOf(const std::string& bundleID) {
    if (!isListed_) {
      all_ = workspace_.runningApplications();
      isListed_ = true;
    }
    const auto owner = std::find_if(all_.begin(), all_.end(), [&](const auto& candidate) {
      return isRegular(candidate) && candidate.bundleID &&
             bundleID.starts_with(*candidate.bundleID + ".");
    });
    return owner == all_.end() ? std::nullopt : std::optional(*owner);
  }

  Workspace& workspace_;
  std::vector<RunningApplication> all_;
  bool isListed_ = false;
};

void addProcess(AudioApp& app, AudioObjectID process, bool isPlaying,
                const std::vector<AudioObjectID>& devices) {
  app.processObjects.push_back(process);
  app.isPlaying = app.isPlaying || isPlaying;
  for (const AudioObjectID device : devices) {
    if (std::find(app.outputDevices.begin(), app.outputDevices.end(), device) ==
        app.outputDevices.end()) {
      app.outputDevices.push_back(device);
    }
  }
}

}  // namespace

AudioAppScanner::AudioAppScanner(AudioProperties& properties, MainQueue& mainQueue,
                                 Workspace& workspace, std::int32_t ownPid)
    : properties_(properties),
      mainQueue_(mainQueue),
      workspace_(workspace),
      ownPid_(ownPid),
      token_(listen(properties, kAudioObjectSystemObject, kAudioHardwarePropertyProcessObjectList,
                    kAudioObjectPropertyScopeGlobal, kAudioObjectPropertyElementMain,
                    [this] { scheduleScan(); })) {}

// The tokens and the scheduled work end with the scanner, so their callbacks may hold it plainly.

void AudioAppScanner::scheduleScan() {
  if (scheduled_) {
    return;
  }
  scheduled_ = true;
  scheduledScan_ = mainQueue_.after(scanDelay, [this] {
    scheduled_ = false;
    scan();
  });
}

void AudioAppScanner::scan() {
  const auto processes =
      AudioObject(properties_, kAudioObjectSystemObject)
          .getArray(kAudioHardwarePropertyProcessObjectList, kAudioObjectPropertyScopeGlobal);
  observe(processes);
  auto apps = readApps(processes);
  if (apps == lastApps_) {
    return;
  }
  lastApps_ = std::move(apps);
  if (onChange) {
    onChange(lastApps_);
  }
}

void AudioAppScanner::observe(const std::vector<AudioObjectID>& processes) {
  const std::set<AudioObjectID> present(processes.begin(), processes.end());
  std::erase_if(processTokens_, [&](const auto& entry) { return !present.contains(entry.first); });

  static constexpr std::pair<AudioObjectPropertySelector, AudioObjectPropertyScope> watched[] = {
      {kAudioProcessPropertyIsRunningOutput, kAudioObjectPropertyScopeGlobal},
      {kAudioProcessPropertyDevices, kAudioObjectPropertyScopeOutput},
  };
  for (const AudioObjectID process : processes) {
    const auto [entry, isNew] = processTokens_.try_emplace(process);
    if (!isNew) {
      continue;
    }
    for (const auto& [selector, scope] : watched) {
      if (auto token = listen(properties_, process, selector, scope,
                              kAudioObjectPropertyElementMain, [this] { scheduleScan(); })) {
        entry->second.push_back(std::move(*token));
      }
    }
  }
}

std::vector<AudioApp> AudioAppScanner::readApps(const std::vector<AudioObjectID>& processes) {
  OwnerFinder owners(workspace_);
  std::map<std::string, AudioApp> found;  // ordered by id, as the result has to be
  for (const AudioObjectID id : processes) {
    const AudioObject process(properties_, id);
    const auto pid =
        process.readValue<std::int32_t>(kAudioProcessPropertyPID, kAudioObjectPropertyScopeGlobal)
            .value_or(-1);
    if (pid < 1 || pid == ownPid_) {
      continue;
    }
    const auto owner = owners.owningApp(pid);
    if (!owner || !owner->bundleID) {
      continue;
    }
    const bool isPlaying = process
                               .readValue<std::uint32_t>(kAudioProcessPropertyIsRunningOutput,
                                                         kAudioObjectPropertyScopeGlobal)
                               .value_or(0) != 0;
    const auto devices =
        process.getArray(kAudioProcessPropertyDevices, kAudioObjectPropertyScopeOutput);

    const auto [entry, isNew] = found.try_emplace(*owner->bundleID);
    if (isNew) {
      entry->second = {.id = *owner->bundleID,
                       .name = owner->localizedName.value_or(*owner->bundleID),
                       .pid = owner->pid,
                       .processObjects = {id},
                       .isPlaying = isPlaying,
                       .outputDevices = devices};
    } else {
      addProcess(entry->second, id, isPlaying, devices);
    }
  }

  std::vector<AudioApp> apps;
  apps.reserve(found.size());
  for (auto& [id, app] : found) {
    apps.push_back(std::move(app));
  }
  return apps;
}

}  // namespace plemora
