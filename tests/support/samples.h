#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace plemora::rig {

/// A test signal of exactly known samples. Text form, for command lines: "identity",
/// "sine:440:0.5", "constant:0.25", "noise:0.5".
struct Signal {
  enum class Kind { identity, sine, constant, noise };

  Kind kind = Kind::identity;
  double frequency = 440;  ///< Hz
  double amplitude = 0.5;

  static Signal identity() { return {}; }
  static Signal sine(double frequency, double amplitude) {
    return {Kind::sine, frequency, amplitude};
  }
  static Signal constant(double amplitude) { return {Kind::constant, 0, amplitude}; }

  std::string text() const;
  static Signal parse(const std::string& text);

  float at(std::uint64_t frame, unsigned channel, unsigned rate) const;
};

/// The identity signal tells the number of each frame and, by its sign and scale, its channel: a
/// multiple of 2^-20 from 1 to 2^20, times a power of two. Every value stays exact under a gain
/// that is a power of two down to 2^-4, so what is recorded can be compared bit for bit.
inline constexpr std::uint64_t identityPeriod = std::uint64_t{1} << 20;
float identitySample(std::uint64_t frame, unsigned channel);
/// The factor of that channel: 1, -1, 1/2, -1/2, 1/4, -1/4 ...
float identityScale(unsigned channel);
/// The number (0 ... identityPeriod - 1) of the frame that a sample of the given channel came from
/// at that gain; -1 when it is none.
std::int64_t identityFrame(float sample, unsigned channel, double gain = 1);

using Channel = std::vector<float>;

double peak(std::span<const float> samples);
bool isConstant(std::span<const float> samples, float value);
double rms(std::span<const float> samples);
/// The largest difference of two neighbouring samples.
double largestStep(std::span<const float> samples);
/// Amplitude of the sine of that frequency in the samples (Goertzel, no window: exact over whole
/// periods).
double amplitudeAt(std::span<const float> samples, double frequency, double rate);
/// Index of the first sample above the threshold; samples.size() when there is none.
std::size_t firstAbove(std::span<const float> samples, double threshold);

/// Writes a WAV file of that many seconds, stereo at 48 kHz in floats. Throws std::runtime_error
/// when it cannot be written.
void writeToneFile(const std::string& path, const Signal& signal, double seconds);

}  // namespace plemora::rig
