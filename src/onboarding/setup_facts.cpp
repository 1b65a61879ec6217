#include "onboarding/setup_facts.h"

#include <exception>

#include "controlcenter/control_center_layout.h"
#include "controlcenter/layout_record.h"
#include "platform/accessibility.h"
#include "platform/preferences.h"
#include "platform/system_info.h"
#include "platform/workspace.h"

namespace plemora {

namespace {

constexpr std::size_t wholeTiles = 2;  // of the program, in place of Sound
// The first system whose Control Center takes other programs' controls.
constexpr int firstMajorVersion = 26;

}  // namespace

bool SetupFacts::isAudioGranted() const {
  return AudioPermission(services_.consent, services_.menuBar.mainQueue).status() ==
         AudioPermission::Status::granted;
}

bool SetupFacts::isTrusted() const {
  return services_.accessibility.isTrusted();
}

SetupFacts::Layout SetupFacts::layout() const {
  try {
    const auto layout = ControlCenterLayout::Layout::read(services_.preferences);
    const bool isWhole =
        layout.soundElement() == nullptr && layout.mixerElements().size() >= wholeTiles;
    return isWhole ? Layout::whole : Layout::lacking;
  } catch (const std::exception&) {
    return Layout::unreadable;
  }
}

/// Control Center stores false or 0 for an icon that it hides, and nothing as long as nobody chose.
bool SetupFacts::isSoundIconHidden() const {
  services_.preferences.appSynchronize(ControlCenterLayout::mainDomain);
  const auto value =
      services_.preferences.appValue(soundIconPreference, ControlCenterLayout::mainDomain);
  return value == PreferenceValue(false) || value == PreferenceValue(std::int64_t{0});
}

bool SetupFacts::canReplaceSound() const {
  // A system that does not tell its version is taken for a recent one.
  const int major = services_.system.version().major;
  return (major == 0 || major >= firstMajorVersion) &&
         (layout() != Layout::unreadable || !controlCenters().empty());
}

std::set<std::int32_t> SetupFacts::controlCenters() const {
  std::set<std::int32_t> pids;
  for (const RunningApplication& application : services_.menuBar.workspace.runningApplications()) {
    if (application.bundleID == ControlCenterLayout::mainDomain) {
      pids.insert(application.pid);
    }
  }
  return pids;
}

}  // namespace plemora
