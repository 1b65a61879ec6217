#include "audio/app_levels.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <nlohmann/json.hpp>
#include <utility>

#include "base/log.h"

namespace plemora {

namespace {

using Json = nlohmann::ordered_json;

constexpr Logger logger("levels");

constexpr const char* volumeMember = "volume";
constexpr const char* mutedMember = "muted";
constexpr const char* outputMember = "output";

/// Members unknown to this version may be nested, but writing them recurses, so not without end.
constexpr int maximumDepth = 64;

/// A JSON object; discarded when the bytes hold anything else.
Json parseObject(std::string_view bytes) {
  bool tooDeep = false;
  auto json = Json::parse(
      bytes.begin(), bytes.end(),
      [&](int depth, Json::parse_event_t, Json&) {
        tooDeep = tooDeep || depth > maximumDepth;
        return true;
      },
      false);
  if (tooDeep || !json.is_object()) {
    return Json(Json::value_t::discarded);
  }
  return json;
}

std::optional<Level> parseLevel(const Json& json) {
  if (!json.is_object()) {
    return std::nullopt;
  }
  const auto volume = json.find(volumeMember);
  const auto muted = json.find(mutedMember);
  const auto output = json.find(outputMember);
  if (volume == json.end() || !volume->is_number() || muted == json.end() || !muted->is_boolean()) {
    return std::nullopt;
  }
  Level level{.volume = static_cast<float>(std::clamp(volume->get<double>(), 0.0, 1.0)),
              .muted = muted->get<bool>(),
              .output = std::nullopt};
  if (output != json.end() && !output->is_null()) {
    if (!output->is_string()) {
      return std::nullopt;
    }
    level.output = output->get<std::string>();
  }
  return level;
}

/// The double whose shortest decimals are the float's: 0.3 rather than 0.30000001192092896. It
/// reads back as the same float.
double shortDouble(float value) {
  std::array<char, 32> digits;
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
  double result = 0;
  std::from_chars(digits.data(), end, result);
  return result;
}

}  // namespace

std::optional<Levels> parseAppLevels(std::string_view bytes) {
  const Json json = parseObject(bytes);
  if (json.is_discarded()) {
    return std::nullopt;
  }
  Levels levels;
  for (const auto& [id, value] : json.items()) {
    auto level = parseLevel(value);
    if (!level) {
      return std::nullopt;
    }
    levels[id] = std::move(*level);
  }
  return levels;
}

std::string serialiseAppLevels(const Levels& levels, std::string_view previous) {
  const Json known = parseObject(previous);
  Json json = Json::object();
  for (const auto& [id, level] : levels) {
    Json& entry = json[id] = Json::object();
    if (known.is_object()) {
      if (const auto before = known.find(id); before != known.end() && before->is_object()) {
        entry = *before;
      }
    }
    entry[volumeMember] = shortDouble(level.volume);
    entry[mutedMember] = level.muted;
    if (level.output) {
      entry[outputMember] = *level.output;
    } else {
      entry.erase(outputMember);
    }
  }
  // An id or a UID that is no valid UTF-8 must not keep the others from being written.
  return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

Levels AppLevels::load() {
  const auto bytes = stored(key);
  if (!bytes) {
    return {};
  }
  auto levels = parseAppLevels(*bytes);
  if (!levels) {
    logger.warning(std::string("the volumes stored under \"") + key +
                   "\" cannot be read; every app starts at full volume. They stay stored until a "
                   "volume is changed and are kept under \"" +
                   unreadableKey + "\" after that");
    return {};
  }
  return std::move(*levels);
}

void AppLevels::save(const Levels& levels) {
  const auto previous = stored(key);
  if (previous && !parseAppLevels(*previous)) {
    keepUnreadable(*previous);
  }
  defaults_.setData(key, serialiseAppLevels(levels, previous.value_or("")));
}

std::optional<std::string> AppLevels::stored(const std::string& under) {
  // A hand-written setting, or one of the launch arguments, is a text rather than bytes.
  auto bytes = defaults_.data(under);
  return bytes ? bytes : defaults_.string(under);
}

void AppLevels::keepUnreadable(const std::string& bytes) {
  std::string keptKey = unreadableKey;
  for (int number = 2;; ++number) {
    const auto kept = stored(keptKey);
    if (kept == bytes) {
      return;
    }
    if (!kept) {
      break;
    }
    keptKey = std::string(unreadableKey) + "." + std::to_string(number);
  }
  defaults_.setData(keptKey, bytes);
  logger.warning(std::string("the unreadable volumes of \"") + key + "\" are kept under \"" +
                 keptKey + "\"");
}

}  // namespace plemora
