#include "adapters/stage/desktop/stage_control_center.h"

#include <algorithm>
#include <iterator>

#include "adapters/stage/desktop/stage_accessibility.h"
#include "adapters/stage/desktop/stage_control_elements.h"
#include "adapters/stage/desktop/stage_menu_bar.h"
#include "adapters/stage/desktop/stage_modules.h"
#include "adapters/stage/desktop/stage_workspace.h"
#include "adapters/stage/simulated_hal.h"

namespace plemora {

namespace {

constexpr const char* boxesKey = "boxes";
constexpr const char* boxesDomain = "com.apple.controlcenter.bentoboxes";
constexpr const char* controlsKey = "ControlCenterDisplayableChronoControlsProviderConfiguration";
constexpr const char* controlsDomain = "com.apple.controlcenter";

/// The bytes of a value that others may have changed meanwhile.
std::optional<std::string> storedData(Preferences& preferences, const char* key, const char* domain,
                                      PreferenceHost host) {
  preferences.synchronize(domain, host);
  const auto value = preferences.value(key, domain, host);
  const auto* data = value ? std::get_if<PreferenceData>(&*value) : nullptr;
  return data == nullptr ? std::nullopt : std::optional(data->bytes);
}

}  // namespace

StageControlCenter::StageControlCenter(const StageControlCenterServices& services)
    : services_(services),
      space_(services.screens),
      life_(std::make_shared<StageControlCenter*>(this)) {}

StageControlCenter::~StageControlCenter() {
  *life_ = nullptr;
}

void StageControlCenter::launch() {
  if (isRunning()) {
    return;
  }
  relaunch_.reset();
  pid_ = services_.workspace.start({.pid = -1,
                                    .bundleID = bundleID,
                                    .localizedName = processName,
                                    .icon = {"controlcenter"},
                                    .activationPolicy = ActivationPolicy::accessory});
  services_.workspace.onTerminated(pid_, [this] { ended(); });
  services_.accessibility.setApplication(pid_, makeControlCenterElement(life_, pid_));
  readLayout();
  if (++launches_ == 1) {
    knowControls();
  }
  followIconPreferences();
}

void StageControlCenter::kill() {
  services_.workspace.forceTerminate(pid_);
}

void StageControlCenter::ended() {
  services_.accessibility.setApplication(pid_, nullptr);
  pid_ = -1;
  extras_.clear();
  phase_ = Phase::closed;
  isEditing_ = false;
  dragged_.reset();
  held_ = {};
  opening_.reset();
  closing_.reset();
  editing_.reset();
  if (!faults.staysDown) {
    relaunch_ = services_.mainQueue.after(faults.relaunchDelay, [this] { launch(); });
  }
}

void StageControlCenter::readLayout() {
  grid_ = {};
  const auto boxes =
      storedData(services_.preferences, boxesKey, boxesDomain, PreferenceHost::current);
  const auto controls =
      storedData(services_.preferences, controlsKey, controlsDomain, PreferenceHost::any);
  if (!boxes || !controls) {
    layoutProblem_ = boxes ? "no controls are stored" : "no boxes are stored";
    return;
  }
  if (auto grid = StageTileGrid::read(*boxes, *controls, layoutProblem_)) {
    grid_ = std::move(*grid);
  }
}

bool StageControlCenter::edited(bool isDone) {
  if (!isDone) {
    return false;
  }
  Preferences& preferences = services_.preferences;
  preferences.setValue(controlsKey, PreferenceData{grid_.controlsValue()}, controlsDomain,
                       PreferenceHost::any);
  preferences.setValue(boxesKey, PreferenceData{grid_.boxesValue()}, boxesDomain,
                       PreferenceHost::current);
  const bool hasControls = preferences.synchronize(controlsDomain, PreferenceHost::any);
  couldStore_ = preferences.synchronize(boxesDomain, PreferenceHost::current) && hasControls;
  return true;
}

void StageControlCenter::knowControls() {
  for (const StageTile& tile : grid_.tiles()) {
    if (tile.control) {
      known_.insert({tile.control->extensionID, tile.control->kind});
    }
  }
}

void StageControlCenter::toggle() {
  if (isOpen() || opening_) {
    close();
  } else {
    open();
  }
}

void StageControlCenter::open() {
  if (!isRunning() || isOpen() || opening_) {
    return;
  }
  if (faults.openDelay <= 0) {
    show();
    return;
  }
  opening_ = services_.mainQueue.after(faults.openDelay, [this] {
    opening_.reset();
    show();
  });
}

void StageControlCenter::show() {
  closing_.reset();
  if (phase_ == Phase::closed) {
    panelNumber_ = services_.numbers.next();
  }
  notify("AXWindowCreated");
  phase_ = Phase::open;
  order_ = services_.numbers.next();
  fade_.start(services_.clock.mediaTime(), 1, fadeInDuration);
  highlightIcon(true);
}

/// To those who observe the process, in a later turn, as it comes from another one.
void StageControlCenter::notify(const std::string& notification) {
  services_.mainQueue.async([life = std::weak_ptr(life_), pid = pid_, notification] {
    const auto center = life.lock();
    if (center && *center != nullptr) {
      (*center)->services_.accessibility.notify(pid, notification);
    }
  });
}

void StageControlCenter::close() {
  opening_.reset();
  if (!isOpen()) {
    return;
  }
  editing_.reset();
  setEditing(false);
  phase_ = Phase::closing;
  highlightIcon(false);
  fade_.start(services_.clock.mediaTime(), 0, fadeOutDuration);
  closing_ = services_.mainQueue.after(fadeOutDuration, [this] {
    phase_ = Phase::closed;
    closing_.reset();
  });
}

void StageControlCenter::highlightIcon(bool isHighlighted) {
  for (const auto& extra : extras_) {
    extra->isHighlighted = isHighlighted && extra->clicked;
  }
}

void StageControlCenter::pressEditButton() {
  if (!isOpen() || faults.ignoresEditButton || editing_) {
    return;
  }
  if (faults.editDelay <= 0) {
    setEditing(!isEditing_);
    return;
  }
  editing_ = services_.mainQueue.after(faults.editDelay, [this] {
    editing_.reset();
    setEditing(!isEditing_);
  });
}

void StageControlCenter::setEditing(bool isEditing) {
  if (isEditing == isEditing_) {
    return;
  }
  isEditing_ = isEditing;
  notify("AXFocusedWindowChanged");
  dragged_.reset();
  editNumbers_.clear();
  if (!isEditing) {
    knowControls();
  }
}

void StageControlCenter::pressTile(const std::string& id) {
  const StageTile* tile = grid_.tile(id);
  if (!isOpen() || isEditing_ || tile == nullptr || !isShown(*tile)) {
    return;
  }
  if (!tile->control) {
    if (!off_.insert(tile->module).second) {
      off_.erase(tile->module);
    }
    return;
  }
  const auto* extension =
      services_.extensions.find(tile->control->extensionID, tile->control->kind);
  if (extension != nullptr && extension->perform) {
    // Another process runs it, in its own time.
    services_.mainQueue.async(extension->perform);
  }
}

bool StageControlCenter::removeTile(const std::string& id) {
  return isEditing_ && edited(grid_.remove(id));
}

bool StageControlCenter::moveTile(const std::string& id, int column, int row) {
  return isEditing_ && edited(grid_.move(id, column, row));
}

bool StageControlCenter::resizeTile(const std::string& id, std::string_view size) {
  return isEditing_ && edited(grid_.resize(id, size));
}

std::vector<std::string> StageControlCenter::gallery() const {
  std::vector<std::string> names;
  for (const StageModule& module : stageModules) {
    if (grid_.module(module.id) == nullptr) {
      names.emplace_back(module.name);
    }
  }
  for (const auto& extension : services_.extensions.installed) {
    names.push_back(extension.displayName);
  }
  return names;
}

bool StageControlCenter::addGalleryEntry(std::size_t index) {
  if (!isEditing_) {
    return false;
  }
  const std::string id = services_.clock.makeUUID();
  for (const StageModule& module : stageModules) {
    if (grid_.module(module.id) == nullptr && index-- == 0) {
      return edited(grid_.addModule(std::string(module.id), id, module.size));
    }
  }
  const auto& installed = services_.extensions.installed;
  return index < installed.size() && edited(grid_.addControl(installed[index], id, "square1x1"));
}

bool StageControlCenter::isShown(const StageTile& tile) const {
  return !tile.control || known_.contains({tile.control->extensionID, tile.control->kind});
}

std::vector<StageTile> StageControlCenter::shownTiles() const {
  std::vector<StageTile> shown;
  std::ranges::copy_if(grid_.tiles(), std::back_inserter(shown),
                       [this](const StageTile& tile) { return isShown(tile); });
  return shown;
}

bool StageControlCenter::hasSlider(const StageTile& tile) {
  const StageModule* module = findStageModule(tile.module);
  return module != nullptr && module->hasSlider && tile.size.columns > 1;
}

Rect StageControlCenter::slider(const StageTile& tile) const {
  constexpr double narrow = 200;
  const Rect frame = panel().tile(tile);
  const bool isSound = tile.module == "Sound";
  const bool isHeadphones = isSound && isOutputHeadphones();
  const double right = frame.width <= narrow ? 16 : isSound && !isHeadphones ? 77 : 49;
  return StageControlPanel::slider(frame, {isHeadphones ? 37.0 : 34.0, right});
}

bool StageControlCenter::isOutputHeadphones() const {
  const AudioObjectID output = services_.hal.defaultOutput();
  if (output == kAudioObjectUnknown) {
    return false;
  }
  const SimulatedDevice device = services_.hal.device(output);
  const std::string name = device.name.value_or("");
  return device.dataSource == kAudioDataSourceHeadphones || name.find("AirPods") != name.npos;
}

double StageControlCenter::sliderValue(const StageTile& tile) const {
  if (tile.module != "Sound") {
    return brightness_;
  }
  const AudioObjectID output = services_.hal.defaultOutput();
  return output == kAudioObjectUnknown ? 0 : services_.hal.device(output).volume.value_or(0);
}

void StageControlCenter::setSlider(const std::string& id, double value) {
  const StageTile* tile = grid_.tile(id);
  if (tile == nullptr || !hasSlider(*tile)) {
    return;
  }
  value = std::clamp(value, 0.0, 1.0);
  const AudioObjectID output = services_.hal.defaultOutput();
  if (tile->module != "Sound") {
    brightness_ = value;
  } else if (output != kAudioObjectUnknown) {
    services_.hal.updateDevice(output, [value](SimulatedDevice& device) {
      if (device.volume) {
        device.volume = static_cast<float>(value);
      }
    });
  }
}

double StageControlCenter::alpha() const {
  return phase_ == Phase::closed ? 0 : fade_.at(services_.clock.mediaTime());
}

StageControlPanel StageControlCenter::panel() const {
  auto panel = StageControlPanel::place(space_.main(), services_.menuBar.height(), grid_.rows());
  panel.tileGap = faults.tileGap;
  return panel;
}

}  // namespace plemora
