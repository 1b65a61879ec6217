#include "pipewire/gain_track.h"

#include <algorithm>
#include <cmath>
#include <sstream>

namespace plemora::rig {

namespace {

bool isOneOf(double gain, const std::vector<double>& expected) {
  return std::any_of(expected.begin(), expected.end(),
                     [&](double value) { return std::abs(gain - value) < 1e-6; });
}

}  // namespace

std::size_t GainTrack::framesOff(const std::vector<double>& expected) const {
  return static_cast<std::size_t>(std::count_if(
      gains.begin(), gains.end(), [&](double gain) { return !isOneOf(gain, expected); }));
}

std::string GainTrack::text(std::size_t shortest) const {
  std::ostringstream out;
  std::size_t between = 0;
  const auto flush = [&] {
    if (between > 0) {
      out << "(other) x " << between << ", ";
      between = 0;
    }
  };
  for (std::size_t i = 0; i < gains.size();) {
    std::size_t end = i + 1;
    while (end < gains.size() && std::abs(gains[end] - gains[i]) < 1e-9) {
      ++end;
    }
    if (end - i >= shortest) {
      flush();
      out << gains[i] << " x " << end - i << ", ";
    } else {
      between += end - i;
    }
    i = end;
  }
  flush();
  return out.str();
}

std::size_t GainTrack::longestFade(const std::vector<double>& expected) const {
  std::size_t longest = 0;
  std::size_t now = 0;
  for (const double gain : gains) {
    now = isOneOf(gain, expected) ? 0 : now + 1;
    longest = std::max(longest, now);
  }
  return longest;
}

GainTrack gainTrack(const Recording& recording, unsigned channel, double firstGain) {
  GainTrack track;
  const auto& samples = recording[channel];
  if (samples.empty()) {
    return track;
  }
  track.firstFrame = identityFrame(samples[0], channel, firstGain);
  if (track.firstFrame < 0) {
    return track;
  }
  track.gains.reserve(samples.size());
  for (std::size_t i = 0; i < samples.size(); ++i) {
    track.gains.push_back(
        static_cast<double>(samples[i]) /
        identitySample(static_cast<std::uint64_t>(track.firstFrame) + i, channel));
  }
  return track;
}

GainTrack gainTrack(const Recording& recording, const Recording& source, unsigned channel,
                    double firstGain) {
  GainTrack track;
  const auto sent = [&](std::uint64_t position) -> const float* {
    const bool isHeld = position >= source.position && position < source.position + source.frames;
    return isHeld ? &source[channel][position - source.position] : nullptr;
  };
  for (std::size_t i = 0; i < recording.frames; ++i) {
    const auto position = recording.position + i;
    const float heard = recording[channel][i];
    if (track.gains.empty()) {
      const auto number = identityFrame(heard, channel, firstGain);
      const float* now = sent(position);
      if (number < 0 || now == nullptr) {
        continue;
      }
      track.firstFrame = number;
      track.delay = identityFrame(*now, channel) - number;
    }
    if (const float* then = sent(position - static_cast<std::uint64_t>(track.delay))) {
      track.gains.push_back(*then == 0 ? (heard == 0 ? 1.0 : -1.0)
                                       : static_cast<double>(heard) / static_cast<double>(*then));
    }
  }
  return track;
}

double largestDifference(const GainTrack& a, const GainTrack& b) {
  double largest = 0;
  for (std::size_t i = 0; i < std::min(a.gains.size(), b.gains.size()); ++i) {
    largest = std::max(largest, std::abs(a.gains[i] - b.gains[i]));
  }
  return largest;
}

}  // namespace plemora::rig
