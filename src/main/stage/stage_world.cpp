#include "main/stage/stage_world.h"

#include <algorithm>
#include <cstdio>
#include <string_view>
#include <utility>

#include "adapters/stage/fresh_layout.h"
#include "adapters/stage/memory_files.h"
#include "adapters/stage/scripted_workspace.h"
#include "adapters/stage/virtual_clock.h"
#include "controlcenter/control_center_layout.h"
#include "platform/audio_constants.h"

namespace plemora {

namespace {

// Spelled out here rather than taken from the program: an error there is not to be repeated.
constexpr const char* controlsDomain = "com.apple.controlcenter";
constexpr const char* controlsKey = "ControlCenterDisplayableChronoControlsProviderConfiguration";
constexpr const char* boxesDomain = "com.apple.controlcenter.bentoboxes";
constexpr const char* boxesKey = "boxes";
constexpr const char* programDomain = "com.quorvane.mixer";
constexpr const char* backupFile = "/Plemora/ControlCenterLayoutBackup.plist";

FourCharCode transportNamed(std::string_view name) {
  constexpr std::pair<std::string_view, FourCharCode> names[] = {
      {"bluetooth", kAudioDeviceTransportTypeBluetooth},
      {"usb", kAudioDeviceTransportTypeUSB},
      {"displayport", kAudioDeviceTransportTypeDisplayPort},
      {"hdmi", kAudioDeviceTransportTypeHDMI},
      {"airplay", kAudioDeviceTransportTypeAirPlay},
      {"thunderbolt", kAudioDeviceTransportTypeThunderbolt}};
  for (const auto& [known, transport] : names) {
    if (known == name) {
      return transport;
    }
  }
  return kAudioDeviceTransportTypeBuiltIn;
}

std::string replaced(std::string text, std::string_view what, std::string_view with) {
  for (auto at = text.find(what); at != std::string::npos; at = text.find(what, at + with.size())) {
    text.replace(at, what.size(), with);
  }
  return text;
}

std::string bytesOf(const std::optional<PreferenceValue>& value) {
  const auto* data = value ? std::get_if<PreferenceData>(&*value) : nullptr;
  return data == nullptr ? std::string() : data->bytes;
}

ScenarioWorld usualWorld() {
  ScenarioWorld world;
  world.layout = ScenarioLayout::fresh;
  world.isDark = true;
  world.isTrusted = true;
  world.consent = ScenarioConsent::granted;
  world.controlCenter.editDelay = 0.5;
  world.defaults["didCompleteSetup"] = true;
  world.devices = {{"speakers", "Built-in Speakers", "built-in", 0.6, false}};
  return world;
}

void storeLayout(ScenarioLayout layout, const StageStorage& storage) {
  const auto owned = storage.makePreferences();
  Preferences& writer = *owned;
  const FreshLayout fresh = freshLayout();
  std::optional<PreferenceValue> boxes = PreferenceData{fresh.boxes};
  std::optional<PreferenceValue> controls = PreferenceData{fresh.controls};
  switch (layout) {
    case ScenarioLayout::fresh:
    case ScenarioLayout::replaced:
      break;
    case ScenarioLayout::noSound: {
      std::string why;
      auto grid = StageTileGrid::read(fresh.boxes, fresh.controls, why);
      grid->remove(std::string(grid->module("Sound")->id));
      boxes = PreferenceData{grid->boxesValue()};
      break;
    }
    case ScenarioLayout::unknown:
      boxes = PreferenceData{replaced(fresh.boxes, "\"grid\"", "\"canvas\"")};
      break;
    case ScenarioLayout::missing:
      boxes.reset();
      controls.reset();
      break;
  }
  writer.setValue(boxesKey, boxes, boxesDomain, PreferenceHost::current);
  writer.setValue(controlsKey, controls, controlsDomain, PreferenceHost::any);
  const bool hasBoxes = writer.synchronize(boxesDomain, PreferenceHost::current);
  if (!writer.synchronize(controlsDomain, PreferenceHost::any) || !hasBoxes) {
    throw ScenarioError("the preferences cannot be stored; choose a folder that can be written to");
  }
  if (layout == ScenarioLayout::replaced) {
    // As the program has left it, but without the file in which it kept what was there before.
    MemoryFiles files;
    VirtualClock clock;
    ScriptedWorkspace workspace;
    ControlCenterLayout(writer, files, clock, workspace).replaceSound();
  }
}

/// The first numbers in a version as people read it, such as "Version 26.4 (Build 25E246)".
SystemVersion versionIn(const std::string& text) {
  SystemVersion version;
  const std::size_t start = text.find_first_of("0123456789");
  if (start != std::string::npos) {
    std::sscanf(text.c_str() + start, "%d.%d.%d", &version.major, &version.minor, &version.patch);
  }
  return version;
}

/// The two preference values of Control Center, empty where there is none.
std::string layoutIn(const StageStorage& storage) {
  const auto reader = storage.makePreferences();
  return bytesOf(reader->value(boxesKey, boxesDomain, PreferenceHost::current)) + '\0' +
         bytesOf(reader->value(controlsKey, controlsDomain, PreferenceHost::any));
}

/// Whether it had to be set up first.
bool setUpStorage(const StageStorage& storage, ScenarioLayout layout) {
  const bool isNew = layoutIn(storage).size() == 1;
  if (isNew) {
    storeLayout(layout, storage);
  }
  return isNew;
}

}  // namespace

void StageFaults::add(const FailStep& fault) {
  if (fault.what == FailStep::What::nothing) {
    clear();
  } else {
    faults_.push_back(fault);
  }
}

const FailStep* StageFaults::striking(FailStep::What what, const std::string& name) {
  for (FailStep& fault : faults_) {
    const bool isMeant = fault.what == what && (fault.of.empty() || fault.of == name);
    if (!isMeant || fault.times == 0) {
      continue;
    }
    if (fault.after > 0) {
      --fault.after;
      continue;
    }
    fault.times -= fault.times > 0 ? 1 : 0;
    if (fault.kills) {
      throw ProgramKilled();
    }
    return &fault;
  }
  return nullptr;
}

StageAnswer StageFaults::answerAccessibility(const std::string& name) {
  const FailStep* fault = striking(FailStep::What::accessibilityCall, name);
  if (fault == nullptr) {
    return StageAnswer::given;
  }
  return fault->vanishes ? StageAnswer::vanished : StageAnswer::refused;
}

bool StageFaults::passesPreferences(const std::string& call) {
  using What = FailStep::What;
  if (call.starts_with("setValue ")) {
    return passes(What::preferenceWrite);
  }
  const bool isSynchronize = call.starts_with("synchronize ") || call.starts_with("appSynchronize");
  return passes(isSynchronize ? What::preferenceSynchronize : What::preferenceRead);
}

bool StageFaults::passesFiles(const std::string& call) {
  using What = FailStep::What;
  if (call.starts_with("exists ")) {
    return true;
  }
  if (call.starts_with("remove ")) {
    return passes(What::fileRemove);
  }
  return passes(call.starts_with("read ") ? What::fileRead : What::fileWrite);
}

StageWorld::StageWorld(const Scenario& scenario, StageStorage storage)
    : storage_(std::move(storage)),
      isNew_(setUpStorage(storage_, scenario.stage.layout.value_or(ScenarioLayout::fresh))),
      desktop({*sharedPreferences_, *systemPreferences_}),
      defaults(makePreferences(), programDomain, desktop.mainQueue) {
  files.gate = [this](const std::string& call) { return faults.passesFiles(call); };
  desktop.accessibility.setGate(
      [this](const std::string& name, int) { return faults.answerAccessibility(name); });
  ScenarioWorld usual = usualWorld();
  ScenarioWorld rest = scenario.stage;
  usual.layout.reset();
  rest.layout.reset();
  if (!isNew_) {
    usual.defaults.clear();
    rest.defaults.clear();
  }
  if (scenario.stage.devices) {
    usual.devices = scenario.stage.devices;
  }
  for (const ScenarioDevice& device : *usual.devices) {
    plug(device);
  }
  apply(usual);
  apply(rest);
  for (const ScenarioPlayer& player : rest.players.value_or(std::vector<ScenarioPlayer>())) {
    play(player);
  }
  desktop.settle();
}

bool StageWorld::hasBackup() {
  return storage_.files->exists(storage_.files->applicationSupport() + backupFile);
}

std::string StageWorld::storedLayout() {
  return layoutIn(storage_);
}

void StageWorld::setScreens(const std::vector<ScenarioScreen>& screens) {
  std::vector<Screen> made;
  for (const ScenarioScreen& screen : screens) {
    // Seen from the main screen's bottom left corner.
    const ScenarioScreen& main = screens.front();
    const Rect frame{screen.x - main.x, main.y + main.height - screen.y - screen.height,
                     screen.width, screen.height};
    made.push_back(StageDesktop::makeScreen(static_cast<int>(made.size()) + 1, frame, screen.scale,
                                            made.empty()));
  }
  desktop.screens.set(std::move(made));
}

void StageWorld::apply(const ScenarioWorld& world) {
  if (world.screens) {
    setScreens(*world.screens);
  }
  if (world.isDark) {
    desktop.appearance.setDark(*world.isDark);
  }
  if (world.isTrusted) {
    desktop.accessibility.setTrusted(*world.isTrusted);
  }
  if (world.consent) {
    switch (*world.consent) {
      case ScenarioConsent::granted:
        desktop.consent.setPreflight(0);
        break;
      case ScenarioConsent::refused:
        desktop.consent.setPreflight(1);
        break;
      case ScenarioConsent::undecided:
        desktop.consent.setPreflight(2);
        break;
    }
  }
  if (world.systemVersion) {
    desktop.systemInfo.versionString = *world.systemVersion;
    desktop.systemInfo.systemVersion = versionIn(*world.systemVersion);
  }
  if (world.build) {
    desktop.systemInfo.build = *world.build;
  }
  if (world.forgetsControls) {
    desktop.controlCenter.forgetControls();
  }
  if (world.layout) {
    storeLayout(*world.layout, storage_);
  }
  StageControlCenterFaults& faulty = desktop.controlCenter.faults;
  faulty.openDelay = world.controlCenter.openDelay.value_or(faulty.openDelay);
  faulty.editDelay = world.controlCenter.editDelay.value_or(faulty.editDelay);
  faulty.relaunchDelay = world.controlCenter.relaunchDelay.value_or(faulty.relaunchDelay);
  faulty.ignoresEditButton =
      world.controlCenter.ignoresEditButton.value_or(faulty.ignoresEditButton);
  faulty.staysDown = world.controlCenter.staysDown.value_or(faulty.staysDown);
  faulty.tileGap = world.controlCenter.tileGap.value_or(faulty.tileGap);
  for (const auto& [key, value] : world.defaults) {
    if (const bool* flag = std::get_if<bool>(&value)) {
      defaults.setBoolean(key, *flag);
    } else if (const auto* text = std::get_if<std::string>(&value)) {
      defaults.setString(key, *text);
    } else {
      defaults.remove(key);
    }
  }
}

void StageWorld::plug(const ScenarioDevice& device) {
  SimulatedDevice simulated;
  simulated.uid = device.uid;
  simulated.name = device.name;
  simulated.transport = transportNamed(device.transport);
  simulated.volume = std::nullopt;
  if (device.volume) {
    simulated.volume = static_cast<float>(*device.volume);
  }
  simulated.hasSettableVolume = device.volume.has_value();
  simulated.isMuted = device.isMuted;
  desktop.plug(simulated);
}

void StageWorld::play(const ScenarioPlayer& player) {
  const std::string id = playerID(player.name);
  if (desktop.players.find(id) != nullptr) {
    desktop.players.setPlaying(id, true);
  } else {
    desktop.players.start(id, player.name, player.frequency, static_cast<float>(player.loudness));
  }
}

}  // namespace plemora
