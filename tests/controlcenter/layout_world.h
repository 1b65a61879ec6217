#pragma once

#include <string>

#include "adapters/stage/fresh_layout.h"
#include "adapters/stage/memory_files.h"
#include "adapters/stage/memory_preferences.h"
#include "adapters/stage/scripted_workspace.h"
#include "adapters/stage/virtual_clock.h"
#include "controlcenter/control_center_layout.h"
#include "controlcenter/layout_elements.h"
#include "controlcenter/layout_record.h"
#include "controlcenter/layout_store.h"
#include "controlcenter/mixer_control.h"

namespace plemora {

using Layout = ControlCenterLayout::Layout;

/// Puts both values where Control Center keeps them.
inline void storeLayout(Preferences& preferences, const StoredLayout& layout) {
  preferences.setValue("ControlCenterDisplayableChronoControlsProviderConfiguration",
                       PreferenceData{layout.controls}, "com.apple.controlcenter",
                       PreferenceHost::any);
  preferences.setValue("boxes", PreferenceData{layout.boxes}, "com.apple.controlcenter.bentoboxes",
                       PreferenceHost::current);
  preferences.synchronize("com.apple.controlcenter", PreferenceHost::any);
  preferences.synchronize("com.apple.controlcenter.bentoboxes", PreferenceHost::current);
}

inline StoredLayout freshStoredLayout() {
  const FreshLayout fresh = freshLayout();
  return {fresh.controls, fresh.boxes};
}

inline RunningApplication application(std::int32_t pid, const std::string& bundleID) {
  RunningApplication running;
  running.pid = pid;
  running.bundleID = bundleID;
  return running;
}

inline PropertyList dictionary(const PropertyList::Members& members) {
  PropertyList list;
  for (const auto& [key, value] : members) {
    list.setMember(key, value);
  }
  return list;
}

/// A Mac's preferences and backup in memory, with Control Center running.
struct LayoutWorld {
  static constexpr const char* backupPath =
      "/Library/Application Support/Plemora/ControlCenterLayoutBackup.plist";

  MemoryPreferences preferences;
  MemoryFiles files;
  VirtualClock clock;
  ScriptedWorkspace workspace;
  int restarts = 0;
  ControlCenterLayout layout{preferences, files, clock, workspace};

  explicit LayoutWorld(const StoredLayout& stored = freshStoredLayout()) {
    storeLayout(preferences, stored);
    workspace.launch(application(7, "com.apple.controlcenter"));
    workspace.onForceTerminate = [this](const RunningApplication& ended) {
      ++restarts;
      workspace.launch(application(ended.pid + 1, *ended.bundleID));
    };
  }

  StoredLayout stored() { return readStoredLayout(preferences); }
  Layout read() { return Layout::read(preferences); }
  void store(const Layout& changed) { storeLayout(preferences, changed.encode()); }
};

/// What it throws, in words; empty when it does not.
template <class Work>
std::string failureOf(const Work& work) {
  try {
    work();
    return {};
  } catch (const std::exception& error) {
    return error.what();
  }
}

}  // namespace plemora
