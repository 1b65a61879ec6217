#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "audio/app_tap.h"
#include "audio/mixer_services.h"
#include "audio/tap_levels.h"

namespace plemora {

/// The running taps and those being built, at most one of each per app. Taps are started and
/// stopped on a queue of their own, in order; everything else happens on the main thread. An
/// outdated build never wins. Destruction stops every tap and waits for that.
class AppTaps {
 public:
  /// A build of the app has ended, in whatever way. again: the tap was started, or somebody asked
  /// for something while the build ran, so what the app needs has to be looked at once more; a
  /// build that just failed is not repeated by itself.
  using BuiltHandler = std::function<void(const std::string& id, bool again)>;

  AppTaps(const MixerServices& services, BuiltHandler onBuilt);
  AppTaps(const AppTaps&) = delete;
  AppTaps& operator=(const AppTaps&) = delete;
  ~AppTaps();

  /// Makes the app's tap be of this design and gain: sets the gain of a running one, else builds
  /// a new one, which replaces it when it runs. While a build is under way it is only noted that
  /// it has to be followed by another look.
  void sync(const TapDesign& design, AudioObjectID outputDevice, float gain);

  /// Stops the app's tap, if any, and makes a build under way come to nothing.
  void discardTap(const std::string& id);

  bool hasTap(const std::string& id) const { return taps_.contains(id); }
  bool isBuilding(const std::string& id) const { return building_.contains(id); }

  /// Apps with a running tap, in order.
  std::vector<std::string> ids() const;

  /// Gains and peaks of the running taps, in order of id; resets the peaks.
  std::vector<TapLevel> takeLevels();

 private:
  struct Build;

  void startBuild(const TapDesign& design, AudioObjectID outputDevice, float gain);
  void finishBuild(const std::string& id);
  void stopOnQueue(std::shared_ptr<AppTap> tap);

  const MixerServices& services_;
  BuiltHandler onBuilt_;
  std::map<std::string, std::shared_ptr<AppTap>> taps_;
  std::map<std::string, std::shared_ptr<Build>> building_;
  std::map<std::string, std::uint64_t> tapGenerations_;
  std::shared_ptr<SerialQueue> tapQueue_;
  std::shared_ptr<AppTaps*> anchor_;  ///< held weakly by what runs later on the main queue
};

}  // namespace plemora
