#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "audio/audio_app.h"
#include "audio/objects/audio_listener_token.h"
#include "platform/audio_properties.h"
#include "platform/main_queue.h"
#include "platform/workspace.h"

namespace plemora {

/// Lists the apps that have audio processes, folding renderers, plug-in hosts and agents into the
/// app that answers for them, and tells its owner when the list has changed. Bursts of
/// notifications cost one scan. Main thread only; everything ends with the scanner.
class AudioAppScanner {
 public:
  using ChangeHandler = std::function<void(const std::vector<AudioApp>&)>;

  static constexpr double scanDelay = 0.12;  ///< seconds

  /// Listens, but makes no scan: the owner calls scan() once after setting onChange. Processes
  /// with the PID ownPid are left out.
  AudioAppScanner(AudioProperties& properties, MainQueue& mainQueue, Workspace& workspace,
                  std::int32_t ownPid);
  AudioAppScanner(const AudioAppScanner&) = delete;
  AudioAppScanner& operator=(const AudioAppScanner&) = delete;

  /// Gets the apps, ordered by id, whenever they differ from those of the last call.
  ChangeHandler onChange;

  /// Scans scanDelay from now, unless a scan is already due.
  void scheduleScan();

  /// Scans at once. What cannot be read counts as absent; nothing fails.
  void scan();

 private:
  void observe(const std::vector<AudioObjectID>& processes);
  std::vector<AudioApp> readApps(const std::vector<AudioObjectID>& processes);

  AudioProperties& properties_;
  MainQueue& mainQueue_;
  Workspace& workspace_;
  const std::int32_t ownPid_;
  std::optional<AudioListenerToken> token_;
  std::map<AudioObjectID, std::vector<AudioListenerToken>> processTokens_;
  bool scheduled_ = false;
  Timer scheduledScan_;
  std::vector<AudioApp> lastApps_;
};

}  // namespace plemora
