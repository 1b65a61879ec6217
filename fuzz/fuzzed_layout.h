#pragma once

#include <cstdlib>
#include <exception>

#include "adapters/stage/memory_files.h"
#include "adapters/stage/memory_preferences.h"
#include "adapters/stage/scripted_workspace.h"
#include "adapters/stage/virtual_clock.h"
#include "controlcenter/control_center_layout.h"
#include "controlcenter/layout_record.h"
#include "controlcenter/mixer_control.h"

namespace plemora {

inline void require(bool holds) {
  if (!holds) {
    std::abort();
  }
}

/// A layout that may be anything is refused without being touched, or survives every command: what
/// was replaced is restored byte for byte, and Sound is there once it was put back.
inline void exerciseLayout(const StoredLayout& stored) {
  MemoryPreferences preferences;
  MemoryFiles files;
  VirtualClock clock;
  ScriptedWorkspace workspace;
  ControlCenterLayout layout(preferences, files, clock, workspace);
  preferences.setValue(controlsKey, PreferenceData{stored.controls},
                       ControlCenterLayout::mainDomain, PreferenceHost::any);
  preferences.setValue(ControlCenterLayout::boxesKey, PreferenceData{stored.boxes},
                       ControlCenterLayout::layoutDomain, PreferenceHost::current);
  StoredLayout written;
  try {
    written = ControlCenterLayout::Layout::decode(stored).encode();
  } catch (const std::exception& error) {
    require(*error.what() != '\0');
    try {
      layout.putSoundBack(true);
      std::abort();
    } catch (const std::exception&) {
      require(readStoredLayout(preferences) == stored);
    }
    return;
  }
  const auto once = ControlCenterLayout::Layout::decode(written);
  const auto twice = ControlCenterLayout::Layout::decode(once.encode());
  require(once.elements == twice.elements && once.controlsRoot == twice.controlsRoot &&
          once.modules == twice.modules && once.instanceIDs == twice.instanceIDs &&
          once.chronoControls == twice.chronoControls);
  try {
    layout.replaceSound();
    require(ControlCenterLayout::Layout::read(preferences).mixerElements().size() >= 2);
    layout.restore();
  } catch (const ControlCenterLayout::Failure& failure) {
    require(failure.kind() == ControlCenterLayout::Failure::noSoundModule);
  }
  require(readStoredLayout(preferences) == stored);
  layout.putSoundBack(false);
  const auto back = ControlCenterLayout::Layout::read(preferences);
  require(back.soundElement() && back.mixerElements().empty());
}

}  // namespace plemora
