#pragma once

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "adapters/stage/desktop/stage_desktop.h"
#include "adapters/stage/faulty_stores.h"
#include "adapters/stage/fresh_layout.h"
#include "adapters/stage/memory_defaults.h"
#include "adapters/stage/memory_files.h"
#include "adapters/stage/memory_preferences.h"
#include "adapters/stage/scripted_hosted_view.h"
#include "app/services/dock_presence.h"
#include "app/services/updater.h"
#include "audio/mixer_model.h"
#include "controlcenter/control_center_layout.h"
#include "controlcenter/control_center_locator.h"
#include "controlcenter/layout_record.h"
#include "menubar/status_item_controller.h"
#include "onboarding/docked_helper.h"
#include "onboarding/onboarding_controller.h"
#include "skin/look/control_center_look.h"

namespace plemora {

/// A new Mac: nothing is allowed, nothing is replaced, and the user does what a test says. Setup
/// runs on it as a process of its own, and again when it is made again.
struct SetupWorld {
  std::shared_ptr<PreferenceStore> store = std::make_shared<PreferenceStore>();
  MemoryPreferences systemPreferences{store};
  MemoryPreferences programPreferences{store};
  FaultyPreferences preferences{programPreferences};
  bool isFresh = storeFreshLayout(systemPreferences);
  StageDesktop desktop{{preferences, systemPreferences}, {.runsAudio = false}};
  MemoryFiles files;
  MemoryDefaults defaults;
  ControlCenterLook look{defaults, desktop.systemInfo, desktop.appearance};
  Updater updater{desktop.updates};
  ControlCenterLocator locator{desktop.screens, desktop.windowServer, desktop.accessibility,
                               preferences, desktop.workspace};
  ControlCenterLayout layout{preferences, files, desktop.clock, desktop.workspace};
  std::unique_ptr<MixerModel> mixer;
  std::unique_ptr<StatusItemController> statusItem;
  std::unique_ptr<OnboardingController> setup;

  // What is there without setup.
  int usualTimers = 0;
  std::size_t usualWindows = 0;

  SetupWorld() {
    desktop.consent.setPreflight(2);
    desktop.accessibility.setTrusted(false);
    desktop.program.start("com.quorvane.mixer", "Plemora");
    mixer = std::make_unique<MixerModel>(MixerServices{desktop.hal,
                                                       desktop.hal,
                                                       desktop.mainQueue,
                                                       desktop.queues,
                                                       desktop.clock,
                                                       desktop.workspace,
                                                       defaults,
                                                       desktop.consent,
                                                       desktop.systemInfo,
                                                       {},
                                                       desktop.program.pid()});
    statusItem = std::make_unique<StatusItemController>(*mixer, menuBar(),
                                                        [](PanelView&) { return view(); });
    desktop.advance(1);
    usualTimers = desktop.mainQueue.pendingTimers();
    usualWindows = desktop.windows.windows().size();
    make();
  }

  static std::shared_ptr<HostedView> view() { return std::make_shared<ScriptedHostedView>(); }

  MenuBarServices menuBar() {
    return {
        desktop.mainQueue,   desktop.clock, defaults,        desktop.workspace,    desktop.program,
        desktop.screens,     desktop.input, desktop.windows, desktop.displayLinks, desktop.menuBar,
        desktop.routePicker, look,          updater};
  }

  void make() {
    setup.reset();
    setup = std::make_unique<OnboardingController>(
        *mixer, *statusItem,
        OnboardingServices{menuBar(),
                           layout,
                           locator,
                           preferences,
                           desktop.accessibility,
                           desktop.consent,
                           desktop.windowServer,
                           desktop.systemInfo,
                           desktop.fileDrag,
                           {.makeSetup = [](SetupView&) { return view(); },
                            .makeHelper = [](HelperView&) { return view(); },
                            .makeCallout = [](CalloutView&) { return view(); },
                            .makeRipple = [] { return view(); }},
                           desktop.program.pid()});
  }

  /// A layout with so many tiles of the program, with Sound or without.
  void storeLayout(int tiles, bool hasSound) {
    storeFreshLayout(systemPreferences);
    auto record = ControlCenterLayout::Layout::read(systemPreferences);
    for (int i = 0; i < tiles; ++i) {
      record.addMixer("tile " + std::to_string(i), 2 * i, 20);
    }
    if (!hasSound) {
      record.elements.erase(record.elements.begin() +
                            (record.soundElement() - record.elements.data()));
    }
    record.write(systemPreferences, StoreOrder::controlsFirst);
  }
  void storeSoundIcon(const PreferenceValue& value) {
    systemPreferences.setValue(SetupFacts::soundIconPreference, value,
                               ControlCenterLayout::mainDomain, PreferenceHost::any);
    systemPreferences.synchronize(ControlCenterLayout::mainDomain, PreferenceHost::any);
  }
  void makeLayoutUnreadable() {
    preferences.gate = [](const std::string& call) { return call != "value boxes"; };
  }
  void makeLayoutUnknown() {
    systemPreferences.setValue("boxes", PreferenceData{"[{}]"}, ControlCenterLayout::layoutDomain,
                               PreferenceHost::current);
    systemPreferences.synchronize(ControlCenterLayout::layoutDomain, PreferenceHost::current);
  }

  /// All that comes before the step is granted or done.
  void prepare(SetupStep step) {
    if (step > SetupStep::audio) {
      desktop.consent.setPreflight(0);
    }
    if (step > SetupStep::accessibility) {
      desktop.accessibility.setTrusted(true);
    }
    if (step > SetupStep::controlCenter) {
      storeLayout(2, false);
      defaults.setBoolean("soundReplaced", true);
    }
  }

  static constexpr const char* ids[] = {"audio", "accessibility", "controlCenter", "soundIcon"};
  static const char* id(SetupStep step) { return ids[static_cast<std::size_t>(step)]; }
  void press(SetupStep step) {
    setup->view().onButton(id(step));
    desktop.settle();
  }

  bool isSet(const std::string& key) { return defaults.boolean(key).value_or(false); }
  std::vector<StepStatus> statuses() const {
    std::vector<StepStatus> result;
    for (const SetupStep step : setupSteps) {
      result.push_back(setup->state.statusOf(step));
    }
    return result;
  }
  const SetupPage& page() const { return setup->view().page.get(); }

  /// Null: there is none.
  StageWindow* window() {
    const auto found = std::ranges::find_if(desktop.windows.windows(), [](const StageWindow* each) {
      return each->options.identifier == DockPresence::windowID;
    });
    return found != desktop.windows.windows().end() ? *found : nullptr;
  }
};

}  // namespace plemora
