#include "main/ctl/volume_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <string_view>

namespace plemora {

namespace {

constexpr double lowestDecibels = -60;

// Digits with at most one decimal point: no sign, exponent, "inf" or "nan".
std::optional<double> parseDecimal(std::string_view text) {
  const bool isPlain = std::all_of(text.begin(), text.end(),
                                   [](char c) { return (c >= '0' && c <= '9') || c == '.'; });
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (!isPlain || error != std::errc() || end != text.data() + text.size()) {
    return std::nullopt;
  }
  return value;
}

}  // namespace

double VolumeRequest::appliedTo(double present) const {
  return std::clamp(isRelative ? present + value : value, 0.0, 1.0);
}

std::optional<VolumeRequest> parseVolume(std::string_view text, std::string& problem) {
  const std::string quoted = "\"" + std::string(text) + "\"";
  VolumeRequest request;
  double sign = 1;
  std::string_view number = text;
  if (number.starts_with('+') || number.starts_with('-')) {
    request.isRelative = true;
    sign = number.front() == '-' ? -1 : 1;
    number.remove_prefix(1);
  }
  const bool isPercent = number.ends_with('%');
  if (isPercent) {
    number.remove_suffix(1);
  }
  const auto value = parseDecimal(number);
  if (!value) {
    problem = quoted + " is not a volume: write 40%, 0.4, +5% or -5%";
    return std::nullopt;
  }
  if (*value > (isPercent ? 100 : 1)) {
    problem = quoted + (isPercent ? " is more than 100%: a volume lies between 0% and 100%"
                                  : " is more than 1: write 40% (or 0.4, where 1 is full volume)");
    return std::nullopt;
  }
  request.value = sign * (isPercent ? *value / 100 : *value);
  return request;
}

std::string percentText(double volume) {
  long percent = std::lround(volume * 100);
  if (volume > 0 && volume < 1) {
    percent = std::clamp(percent, 1L, 99L);
  }
  return std::to_string(percent) + "%";
}

std::string decibelText(double peak) {
  if (!(peak > 0)) {
    return "-inf dB";
  }
  char text[32];
  // The added 0 turns a rounded "-0.0" into "0.0".
  std::snprintf(text, sizeof text, "%.1f dB", std::round(200 * std::log10(peak)) / 10 + 0.0);
  return text;
}

std::string levelBar(double peak, int width, bool utf8) {
  static constexpr std::string_view eighthBlocks[] = {"", "▏", "▎", "▍", "▌", "▋", "▊", "▉"};
  const double decibels = peak > 0 ? 20 * std::log10(peak) : lowestDecibels;
  const double part = std::clamp(1 - decibels / lowestDecibels, 0.0, 1.0);
  const int steps = utf8 ? 8 : 1;
  const int filled = static_cast<int>(std::lround(part * width * steps));
  const int whole = filled / steps;
  std::string bar;
  for (int i = 0; i < whole; ++i) {
    bar += utf8 ? "█" : "#";
  }
  const bool hasRest = filled % steps != 0;
  if (hasRest) {
    bar += eighthBlocks[filled % steps];
  }
  bar.append(static_cast<std::size_t>(width - whole - (hasRest ? 1 : 0)), ' ');
  return bar;
}

}  // namespace plemora
