#include "skin/look/control_center_look.h"

#include <algorithm>
#include <cstdlib>

#include "base/log.h"
#include "skin/look/style_numbers.h"

namespace plemora {

namespace {

constexpr Logger logger("look");

bool isRelease(std::string_view text) {
  return text == "26.1" || text == "26.4" || text == "27";
}

std::string releaseOf(const SystemVersion& version) {
  if (version >= SystemVersion{27, 0, 0}) {
    return "27";
  }
  return version >= SystemVersion{26, 4, 0} ? "26.4" : "26.1";
}

}  // namespace

ControlCenterLook::ControlCenterLook(UserDefaults& defaults, SystemInfo& system,
                                     Appearance& appearance, ReleaseSource source)
    : defaults_(defaults), appearance_(appearance), release_(releaseOf(system.version())) {
  if (source == ReleaseSource::system) {
    return;
  }
  if (const auto chosen = defaults_.string(releaseKey)) {
    if (isRelease(*chosen)) {
      release_ = *chosen;
    } else {
      logger.warning("the setting \"release\" is \"" + *chosen +
                     "\"; it can be 26.1, 26.4 or 27. " + release_ + " is used.");
    }
  }
}

std::string ControlCenterLook::style(const std::string& key, BuiltInStyles builtIn) const {
  const std::string appearance = isDark() ? ".dark" : ".light";
  for (const std::string& name : {key + appearance, key}) {
    if (auto chosen = defaults_.string(name)) {
      return *chosen;
    }
  }
  for (const std::string& name : {release_ + appearance, release_, std::string("26.1")}) {
    const auto found = std::ranges::find(builtIn, name, &BuiltInStyle::key);
    if (found != builtIn.end()) {
      return std::string(found->style);
    }
  }
  logger.error("the built-in styles of " + key + " have none for 26.1");
  std::abort();
}

std::optional<double> ControlCenterLook::tuning(std::string_view name) const {
  const std::string look = defaults_.string("look").value_or("");
  for (const std::string_view piece : splitText(look, ',')) {
    const auto [key, value] = splitPiece(piece);
    if (key == name && value) {
      return parseDouble(*value);
    }
  }
  return std::nullopt;
}

}  // namespace plemora
