#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "base/property_list.h"
#include "controlcenter/control_center_layout.h"
#include "controlcenter/layout_json.h"
#include "controlcenter/layout_store.h"

namespace plemora {

/// Control Center's layout, decoded. A value: it owns everything, also what it does not
/// understand, and writes that back unchanged.
struct ControlCenterLayout::Layout {
  LayoutDictionaries boxes;            ///< the grids; the first one counts
  LayoutDictionaries elements;         ///< tiles of the first box
  PropertyList displayables;           ///< a dictionary: what those tiles show
  PropertyList::Array instanceIDs;     ///< of the displayables
  PropertyList::Array chronoControls;  ///< of the displayables
  PropertyList::Array modules;         ///< of the displayables
  LayoutJson controlsRoot;             ///< a dictionary
  LayoutDictionaries controls;         ///< of the controls root

  /// Throws Failure unreadable or unexpectedFormat, or what the parsers throw.
  static Layout read(Preferences& preferences);
  static Layout decode(const StoredLayout& stored);

  /// Throws NotStored; both values are the old ones then.
  void write(Preferences& preferences, StoreOrder order) const;
  StoredLayout encode() const;

  /// Module names by the identifiers of the elements that show them.
  std::map<std::string, std::string> moduleNames() const;

  /// The first element that shows the system's Sound, null when there is none. Valid until the
  /// elements change.
  const LayoutJson* soundElement() const;

  /// The elements that show controls of this program.
  LayoutDictionaries mixerElements() const;

  /// Cells {"x": , "y": } that elements of known size and place cover, in their order.
  static LayoutDictionaries occupiedCells(const LayoutDictionaries& elements);

  /// Removes the program's elements and controls; the rest keeps its order.
  void removeMixer();
  void removeMixerElements();  ///< keeps the controls
  /// Adds a tile of the program, two columns wide, and the control that it shows.
  void addMixer(const std::string& identifier, std::int64_t x, std::int64_t y);
  /// Adds Sound with four columns, and its module.
  void addSound(const std::string& identifier, std::int64_t y);

 private:
  std::set<std::string> mixerIdentifiers() const;
};

}  // namespace plemora
