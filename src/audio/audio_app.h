#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/audio_types.h"
#include "platform/workspace.h"

namespace plemora {

/// One app that has audio processes.
struct AudioApp {
  std::string id;         ///< bundle identifier of the app that owns the processes
  std::string name;       ///< its localized name, else the bundle identifier
  std::int32_t pid = -1;  ///< of the owning app, not of the audio process
  std::vector<AudioObjectID> processObjects;  ///< in the order met
  bool isPlaying = false;                     ///< any of the processes runs output
  std::vector<AudioObjectID> outputDevices;   ///< without repeats, in the order met

  bool operator==(const AudioApp&) const = default;

  /// The running application's icon, else the generic one.
  Image icon(Workspace& workspace) const {
    const auto application = workspace.runningApplication(pid);
    return application && !application->icon.empty() ? application->icon
                                                     : workspace.genericApplicationIcon();
  }
};

}  // namespace plemora
