#include "skin/bubble_cancel.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <nlohmann/json.hpp>
#include <utility>

#include "platform/files.h"
#include "platform/resources.h"
#include "platform/user_defaults.h"

namespace plemora {

namespace {

using Json = nlohmann::json;

std::optional<BubbleCancel::Entry> decodeEntry(const Json& json) {
  const auto mask = json.find("mask");  // finds nothing in what is no object
  const auto matrix = json.find("matrix");
  if (mask == json.end() || !mask->is_string() || matrix == json.end() || !matrix->is_array()) {
    return std::nullopt;
  }
  BubbleCancel::Entry entry{mask->get<std::string>(), {}};
  for (const Json& number : *matrix) {
    const double value = number.is_number() ? number.get<double>() : std::nan("");
    if (!(std::abs(value) <= std::numeric_limits<float>::max())) {
      return std::nullopt;
    }
    entry.matrix.push_back(static_cast<float>(value));
  }
  return entry;
}

/// Empty when any entry is not as it should be: the file is read whole or not at all.
std::vector<BubbleCancel::Entry> decode(const std::string& bytes) {
  const Json json = Json::parse(bytes, nullptr, false);
  std::vector<BubbleCancel::Entry> entries;
  if (!json.is_array()) {
    return entries;
  }
  for (const Json& element : json) {
    auto entry = decodeEntry(element);
    if (!entry) {
      return {};
    }
    entries.push_back(*std::move(entry));
  }
  return entries;
}

ColorMatrix blendedFromIdentity(const std::vector<float>& matrix, float strength) {
  ColorMatrix result;
  for (std::size_t i = 0; i < result.size(); ++i) {
    const float identity = i % 6 == 0 ? 1.0F : 0.0F;  // the diagonal of four rows of five
    result[i] = identity * (1 - strength) + matrix[i] * strength;
  }
  return result;
}

}  // namespace

BubbleCancel::BubbleCancel(UserDefaults& defaults, Files& files, Resources& resources)
    : defaults_(defaults), files_(files), resources_(resources) {}

std::optional<std::string> BubbleCancel::file(const std::string& name,
                                              const std::string& extension) const {
  if (const auto folder = defaults_.string(folderKey)) {
    std::string path = *folder + "/" + name + "." + extension;
    if (files_.exists(path)) {
      return path;
    }
  }
  return resources_.path(name, extension);
}

std::vector<BubbleCancel::Layer> BubbleCancel::layers(const std::string& set,
                                                      float strength) const {
  const auto path = file(set, "json");
  const auto bytes = path ? files_.read(*path) : std::nullopt;
  std::vector<Layer> result;
  if (!bytes) {
    return result;
  }
  const float usable = std::isnan(strength) ? 0.0F : std::clamp(strength, 0.0F, 1.0F);
  for (const Entry& entry : decode(*bytes)) {
    if (entry.matrix.size() != ColorMatrix().size()) {
      continue;
    }
    if (auto mask = image(entry.mask)) {
      result.push_back({*std::move(mask), blendedFromIdentity(entry.matrix, usable)});
    }
  }
  return result;
}

std::optional<ImageContent> BubbleCancel::image(const std::string& mask) const {
  const auto path = file(mask, "png");
  const auto bytes = path ? files_.read(*path) : std::nullopt;
  return bytes ? resources_.decodeImage(*bytes) : std::nullopt;
}

}  // namespace plemora
