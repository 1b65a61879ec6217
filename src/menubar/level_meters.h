#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "audio/tap_levels.h"

namespace plemora {

/// How long the meters of apps are, from the peaks of their taps: at once up, slowly down. Nothing
/// runs while it is stopped. Main thread.
class LevelMeters {
 public:
  static constexpr double interval = 1.0 / 30;  ///< seconds
  /// What a meter of no length stands for; full length is full scale.
  static constexpr double floorDecibels = -48;
  /// How fast a meter falls, in decibels a second.
  static constexpr double fallRate = 24;

  /// 0...1 of a meter's length by bundle identifier, one for each running tap.
  using Levels = std::map<std::string, double>;

  /// The levels outlive it. Changed: called when a length has changed.
  LevelMeters(TapLevels& levels, std::function<void(const Levels&)> changed);

  void start();
  /// Forgets all lengths; nobody is told.
  void stop();
  bool isRunning() const { return watch_ != nullptr; }

  /// The length for a linear peak.
  static double length(float peak);

 private:
  void take(const std::vector<TapLevel>& levels);

  TapLevels& tapLevels_;
  std::function<void(const Levels&)> changed_;
  std::shared_ptr<TapLevels::Watch> watch_;
  Levels lengths_;
};

}  // namespace plemora
