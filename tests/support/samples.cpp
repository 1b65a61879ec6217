#include "support/samples.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <numbers>
#include <sstream>
#include <stdexcept>

namespace plemora::rig {

namespace {

constexpr const char* kindNames[] = {"identity", "sine", "constant", "noise"};

float noiseAt(std::uint64_t frame, unsigned channel) {
  std::uint64_t x = frame * 0x9e3779b97f4a7c15u + channel * 0xbf58476d1ce4e5b9u + 1;
  x = (x ^ x >> 30) * 0xbf58476d1ce4e5b9u;
  x = (x ^ x >> 27) * 0x94d049bb133111ebu;
  return static_cast<float>(static_cast<std::int32_t>((x ^ x >> 31) & 0xffffff) - 0x800000) /
         static_cast<float>(0x800000);
}

void put(std::string& bytes, std::uint32_t value, int count) {
  for (int i = 0; i < count; ++i) {
    bytes += static_cast<char>(value >> 8 * i & 0xff);
  }
}

}  // namespace

std::string Signal::text() const {
  std::ostringstream out;
  out << kindNames[static_cast<int>(kind)] << ':' << frequency << ':' << amplitude;
  return out.str();
}

Signal Signal::parse(const std::string& text) {
  std::istringstream in(text);
  std::string name;
  std::string frequency;
  std::string amplitude;
  std::getline(in, name, ':');
  std::getline(in, frequency, ':');
  std::getline(in, amplitude, ':');
  const auto found = std::find(std::begin(kindNames), std::end(kindNames), name);
  if (found == std::end(kindNames)) {
    throw std::runtime_error("no such signal: " + text);
  }
  Signal signal;
  signal.kind = static_cast<Kind>(found - std::begin(kindNames));
  if (!frequency.empty()) {
    signal.frequency = std::stod(frequency);
  }
  if (!amplitude.empty()) {
    signal.amplitude = std::stod(amplitude);
  }
  return signal;
}

float Signal::at(std::uint64_t frame, unsigned channel, unsigned rate) const {
  switch (kind) {
    case Kind::identity:
      return identitySample(frame, channel);
    case Kind::sine:
      return static_cast<float>(amplitude * std::sin(2 * std::numbers::pi * frequency *
                                                     static_cast<double>(frame) / rate));
    case Kind::constant:
      return static_cast<float>(amplitude);
    case Kind::noise:
      return static_cast<float>(amplitude) * noiseAt(frame, channel);
  }
  return 0;
}

float identityScale(unsigned channel) {
  return std::ldexp(channel % 2 == 0 ? 1.0f : -1.0f, -static_cast<int>(channel / 2));
}

float identitySample(std::uint64_t frame, unsigned channel) {
  const auto number = static_cast<float>(frame % identityPeriod + 1);
  return identityScale(channel) * number / static_cast<float>(identityPeriod);
}

std::int64_t identityFrame(float sample, unsigned channel, double gain) {
  const double number = static_cast<double>(sample) / identityScale(channel) / gain *
                        static_cast<double>(identityPeriod);
  const double nearest = std::round(number);
  if (nearest < 1 || nearest > static_cast<double>(identityPeriod) ||
      std::abs(number - nearest) > 0.01) {
    return -1;
  }
  return static_cast<std::int64_t>(nearest) - 1;
}

double peak(std::span<const float> samples) {
  double largest = 0;
  for (const float sample : samples) {
    largest = std::max(largest, std::abs(static_cast<double>(sample)));
  }
  return largest;
}

bool isConstant(std::span<const float> samples, float value) {
  return std::all_of(samples.begin(), samples.end(),
                     [value](float sample) { return sample == value; });
}

double rms(std::span<const float> samples) {
  double sum = 0;
  for (const float sample : samples) {
    sum += static_cast<double>(sample) * sample;
  }
  return samples.empty() ? 0 : std::sqrt(sum / static_cast<double>(samples.size()));
}

double largestStep(std::span<const float> samples) {
  double largest = 0;
  for (std::size_t i = 1; i < samples.size(); ++i) {
    largest = std::max(largest, std::abs(static_cast<double>(samples[i]) - samples[i - 1]));
  }
  return largest;
}

double amplitudeAt(std::span<const float> samples, double frequency, double rate) {
  double real = 0;
  double imaginary = 0;
  for (std::size_t i = 0; i < samples.size(); ++i) {
    const double angle = 2 * std::numbers::pi * frequency * static_cast<double>(i) / rate;
    real += samples[i] * std::cos(angle);
    imaginary += samples[i] * std::sin(angle);
  }
  return samples.empty() ? 0
                         : 2 * std::hypot(real, imaginary) / static_cast<double>(samples.size());
}

std::size_t firstAbove(std::span<const float> samples, double threshold) {
  const auto found = std::find_if(samples.begin(), samples.end(),
                                  [&](float sample) { return std::abs(sample) > threshold; });
  return static_cast<std::size_t>(found - samples.begin());
}

void writeToneFile(const std::string& path, const Signal& signal, double seconds) {
  constexpr std::uint32_t channels = 2;
  constexpr std::uint32_t rate = 48000;
  constexpr std::uint32_t width = sizeof(float);
  const auto frames = static_cast<std::uint64_t>(std::llround(seconds * rate));
  const auto size = static_cast<std::uint32_t>(frames * channels * width);
  std::string bytes = "RIFF";
  bytes.reserve(size + 64);
  put(bytes, size + 36, 4);
  bytes += "WAVEfmt ";
  put(bytes, 16, 4);
  put(bytes, 3, 2);  // floats
  put(bytes, channels, 2);
  put(bytes, rate, 4);
  put(bytes, rate * channels * width, 4);
  put(bytes, channels * width, 2);
  put(bytes, width * 8, 2);
  bytes += "data";
  put(bytes, size, 4);
  for (std::uint64_t frame = 0; frame < frames; ++frame) {
    for (unsigned channel = 0; channel < channels; ++channel) {
      const float sample = signal.at(frame, channel, rate);
      bytes.append(reinterpret_cast<const char*>(&sample), sizeof sample);
    }
  }
  std::ofstream file(path, std::ios::binary);
  if (!file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()))) {
    throw std::runtime_error("cannot write " + path);
  }
}

}  // namespace plemora::rig
