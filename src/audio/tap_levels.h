#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/main_queue.h"

namespace plemora {

/// What one tap did since a watcher's last reading. Linear.
struct TapLevel {
  std::string id;          ///< bundle identifier
  float gain = 0.0f;       ///< target
  float inputPeak = 0.0f;  ///< before the gain
  float peak = 0.0f;       ///< after it
};

/// The one reader of the taps' peaks. Reading resets them, so everybody who wants them asks here
/// and gets the maxima since its own last reading. While nobody watches, or no tap runs, there is
/// no timer. Main thread only.
class TapLevels {
 public:
  /// Reads and resets the peaks of every running tap; in order of id.
  using Source = std::function<std::vector<TapLevel>()>;
  using Watcher = std::function<void(const std::vector<TapLevel>&)>;

  /// Dropping it ends the watching, also from inside the watcher. It may outlive the TapLevels.
  class Watch;

  static constexpr double logInterval = 2.0;  ///< seconds

  TapLevels(MainQueue& mainQueue, Source source);
  ~TapLevels();

  /// Calls the watcher every so many seconds (above 0) with the running taps, in order of id; the
  /// peaks count from this call on. A reading without any tap is the last one until tapStarted().
  [[nodiscard]] std::shared_ptr<Watch> watch(double interval, Watcher watcher);

  /// A tap runs that did not run before.
  void tapStarted();

  /// Writes the levels to the log, category "levels", every logInterval from now on.
  void startLog();

 private:
  struct Shared;

  void run(const std::shared_ptr<Watch>& watch);

  MainQueue& mainQueue_;
  std::shared_ptr<Shared> shared_;  ///< timers of watchers that are left over hold it weakly
  std::shared_ptr<Watch> log_;
};

}  // namespace plemora
