#include "audio/audibility.h"

#include <cmath>
#include <utility>

namespace plemora {

namespace {

using Tap = AudibilityFacts::Tap;

std::string percent(float volume) {
  return std::to_string(std::lround(volume * 100.0f)) + " %";
}

/// The app's level has no effect when the tap that would apply it is not there.
bool levelActs(const AudibilityFacts& facts) {
  return facts.tap != Tap::missing;
}

AudibilityFactor playing(const AudibilityFacts& facts) {
  return facts.isPlaying
             ? AudibilityFactor{"playing", 1, facts.appName + " plays"}
             : AudibilityFactor{"playing", 0, facts.appName + " plays nothing at the moment"};
}

AudibilityFactor appMute(const AudibilityFacts& facts) {
  if (!facts.level.muted) {
    return {"app mute", 1, facts.appName + " is not muted"};
  }
  if (!levelActs(facts)) {
    return {"app mute", 1,
            facts.appName + " is muted, but its sound could not be captured: it plays unchanged"};
  }
  return {"app mute", 0, facts.appName + " is muted"};
}

AudibilityFactor appLevel(const AudibilityFacts& facts) {
  const std::string text = "the volume of " + facts.appName + " is " + percent(facts.level.volume);
  if (!levelActs(facts)) {
    return {"app level", 1, text + ", but its sound could not be captured: it plays unchanged"};
  }
  return {"app level", facts.level.volume * facts.level.volume, text};
}

AudibilityFactor route(const AudibilityFacts& facts) {
  if (facts.deviceName.empty()) {
    return {"route", 0, "there is no output device"};
  }
  std::string text = "heard on " + facts.deviceName;
  if (facts.chosenOutputIsMissing) {
    text += ", because the chosen device is not there";
  } else if (facts.isRouted && facts.tap == Tap::building) {
    text += " in a moment";
  } else if (facts.isRouted) {
    text += ", which was chosen for it";
  }
  return {"route", 1, text};
}

AudibilityFactor deviceMute(const AudibilityFacts& facts) {
  return facts.deviceIsMuted
             ? AudibilityFactor{"device mute", 0, facts.deviceName + " is muted"}
             : AudibilityFactor{"device mute", 1, facts.deviceName + " is not muted"};
}

AudibilityFactor deviceVolume(const AudibilityFacts& facts) {
  if (!facts.deviceVolume) {
    return {"device volume", 1, facts.deviceName + " has no volume that could be set"};
  }
  return {"device volume", *facts.deviceVolume,
          "the volume of " + facts.deviceName + " is " + percent(*facts.deviceVolume)};
}

AudibilityFactor permission(const AudibilityFacts& facts) {
  if (facts.permission == AudioPermission::Status::granted) {
    return {"permission", 1, "capturing the sound of apps is allowed"};
  }
  const std::string text = facts.permission == AudioPermission::Status::denied
                               ? "capturing the sound of apps is refused in the system's settings"
                               : "nobody has allowed capturing the sound of apps yet";
  // Without permission a tap silences its app and delivers nothing.
  const bool matters = facts.tap == Tap::running || facts.tap == Tap::building;
  return {"permission", matters ? 0.0 : 1.0,
          matters ? text : text + ", which does not matter at full volume on the app's own device"};
}

}  // namespace

Audibility explainAudibility(const AudibilityFacts& facts) {
  Audibility result;
  result.factors = {playing(facts), appMute(facts), appLevel(facts), route(facts)};
  if (!facts.deviceName.empty()) {
    result.factors.push_back(deviceMute(facts));
    result.factors.push_back(deviceVolume(facts));
  }
  result.factors.push_back(permission(facts));

  std::string zeros;
  for (const AudibilityFactor& factor : result.factors) {
    result.product *= factor.value;
    if (factor.value == 0) {
      zeros += (zeros.empty() ? "" : "; ") + factor.name + ": " + factor.text;
    }
  }
  result.verdict =
      zeros.empty() ? facts.appName + " is heard on " + facts.deviceName : "silent: " + zeros;
  return result;
}

}  // namespace plemora
