#include "controlcenter/control_center_layout.h"

#include <algorithm>
#include <cstdint>
#include <set>
#include <utility>

#include "controlcenter/layout_elements.h"
#include "controlcenter/layout_record.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "platform/workspace.h"

namespace plemora {

namespace {

constexpr std::int64_t mixerColumns[] = {0, 2};
constexpr std::int64_t gridColumns = 4;

const char* describe(ControlCenterLayout::Failure::Case kind) {
  using Failure = ControlCenterLayout::Failure;
  switch (kind) {
    case Failure::unreadable:
      return "Control Center's layout couldn't be read.";
    case Failure::unexpectedFormat:
      return "This version of macOS stores Control Center's layout differently.";
    case Failure::noSoundModule:
      break;
  }
  return "Apple's Sound module isn't in Control Center.";
}

std::string encodeBackup(const StoredLayout& stored) {
  PropertyList backup;
  backup.setMember("controls", PropertyList::data(stored.controls));
  backup.setMember("boxes", PropertyList::data(stored.boxes));
  return backup.xml();
}

/// None when the bytes are no backup.
std::optional<StoredLayout> decodeBackup(const std::string& bytes) {
  try {
    const PropertyList backup = PropertyList::parse(bytes);
    const auto controls = backup.member("controls");
    const auto boxes = backup.member("boxes");
    if (controls && boxes && controls->asData() && boxes->asData()) {
      return StoredLayout{*controls->asData(), *boxes->asData()};
    }
  } catch (const PropertyListError&) {
  }
  return std::nullopt;
}

/// The row for Sound in place of those tiles, once they are gone from the layout: theirs, if they
/// share one; else the first of their rows, else of all rows, in which nothing else stands.
std::int64_t rowForSound(const LayoutDictionaries& tiles, const LayoutDictionaries& others) {
  std::vector<std::int64_t> rows;
  for (const LayoutJson& tile : tiles) {
    if (const auto y = elementRow(tile)) {
      rows.push_back(*y);
    }
  }
  if (!rows.empty() && std::set(rows.begin(), rows.end()).size() == 1) {
    return rows.front();
  }
  std::set<std::int64_t> taken;
  for (const LayoutJson& cell : ControlCenterLayout::Layout::occupiedCells(others)) {
    const std::int64_t x = *layoutInteger(layoutMember(cell, "x"));
    if (x >= 0 && x < gridColumns) {
      taken.insert(*layoutInteger(layoutMember(cell, "y")));
    }
  }
  const auto isFree = [&](std::int64_t row) { return !taken.contains(row); };
  if (const auto free = std::ranges::find_if(rows, isFree); free != rows.end()) {
    return *free;
  }
  std::int64_t row = 0;
  while (!isFree(row)) {
    ++row;
  }
  return row;
}

}  // namespace

ControlCenterLayout::Failure::Failure(Case kind)
    : std::runtime_error(describe(kind)), kind_(kind) {}

ControlCenterLayout::ControlCenterLayout(Preferences& preferences, Files& files, Clock& clock,
                                         Workspace& workspace)
    : preferences_(preferences), files_(files), clock_(clock), workspace_(workspace) {}

void ControlCenterLayout::replaceSound() {
  Layout layout = Layout::read(preferences_);
  const LayoutJson* sound = layout.soundElement();
  if (!sound) {
    throw Failure(Failure::noSoundModule);
  }
  saveBackup();
  if (!layout.mixerElements().empty()) {
    // Tiles that are there already leave the grid before their controls do, as always.
    Layout cleared = layout;
    cleared.removeMixerElements();
    cleared.write(preferences_, StoreOrder::boxesFirst);
  }
  const std::int64_t y = elementRow(*sound).value_or(0);
  layout.elements.erase(layout.elements.begin() + (sound - layout.elements.data()));
  layout.removeMixer();
  for (const std::int64_t x : mixerColumns) {
    layout.addMixer(clock_.makeUUID(), x, y);
  }
  layout.write(preferences_, StoreOrder::controlsFirst);
  restartControlCenter();
}

void ControlCenterLayout::restore() {
  const std::string path = backupURL();
  const auto bytes = files_.read(path);
  const auto backup = bytes ? decodeBackup(*bytes) : std::nullopt;
  if (!backup) {
    throw Failure(Failure::unreadable);
  }
  writeStoredLayout(preferences_, *backup, StoreOrder::boxesFirst);
  const bool isGone = files_.remove(path);
  restartControlCenter();
  if (!isGone) {
    throw NotStored("The backup of Control Center's layout couldn't be deleted.");
  }
}

void ControlCenterLayout::putSoundBack(bool restart) {
  Layout layout = Layout::read(preferences_);
  const LayoutDictionaries tiles = layout.mixerElements();
  const bool hasSound = layout.soundElement() != nullptr;
  layout.removeMixer();
  if (!hasSound) {
    layout.addSound(clock_.makeUUID(), rowForSound(tiles, layout.elements));
  }
  layout.write(preferences_, StoreOrder::boxesFirst);
  if (restart) {
    restartControlCenter();
  }
}

void ControlCenterLayout::restartControlCenter() {
  for (const RunningApplication& application : workspace_.runningApplications()) {
    if (application.bundleID == mainDomain) {
      workspace_.forceTerminate(application.pid);
    }
  }
}

void ControlCenterLayout::saveBackup() {
  const std::string path = backupURL();
  // Read as well: a file that is there but could not be looked at is not to be lost either.
  if (files_.exists(path) || files_.read(path)) {
    return;
  }
  const StoredLayout stored = readStoredLayout(preferences_);
  const std::string bytes = encodeBackup(stored);
  if (decodeBackup(bytes) != stored || !files_.writeAtomically(path, bytes)) {
    throw NotStored("The backup of Control Center's layout couldn't be saved.");
  }
}

std::string ControlCenterLayout::backupURL() {
  const std::string folder = files_.applicationSupport() + "/Plemora";
  files_.makeFolder(folder);
  return folder + "/ControlCenterLayoutBackup.plist";
}

}  // namespace plemora
