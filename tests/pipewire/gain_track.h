#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "support/pipewire/sink_recorder.h"

namespace plemora::rig {

/// The gain at which each frame of one identity signal was recorded, supposing that no frame was
/// lost, added or delayed since the first one; so a shift shows as a gain that is wrong for good.
struct GainTrack {
  std::int64_t firstFrame = -1;  ///< number of the frame recorded first; -1: not recognised
  std::vector<double> gains;
  std::int64_t delay = 0;  ///< frames from the source, where one was given

  /// Number of frames whose gain is none of the given ones (within 1e-6).
  std::size_t framesOff(const std::vector<double>& expected) const;
  /// Stretches of equal gain of at least that many frames, and what lies between them, as text:
  /// "1 x 4800, (fade) x 256, 0.25 x 9600".
  std::string text(std::size_t shortest = 32) const;
  /// Longest stretch without one of the expected gains.
  std::size_t longestFade(const std::vector<double>& expected) const;
  double last() const { return gains.empty() ? -1 : gains.back(); }
};

/// The recording must begin at the given gain.
GainTrack gainTrack(const Recording& recording, unsigned channel, double firstGain = 1);

/// As above, against what left the app by the same clock, so that a player that stumbles does not
/// count. Both recorded on one driver; only frames that both hold are taken. How late the first one
/// is heard, every one has to be: a sink's monitor is itself a cycle behind.
GainTrack gainTrack(const Recording& recording, const Recording& source, unsigned channel,
                    double firstGain = 1);

/// Largest difference of the gains of two channels at one frame.
double largestDifference(const GainTrack& a, const GainTrack& b);

}  // namespace plemora::rig
