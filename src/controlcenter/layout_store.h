#pragma once

#include <string>

namespace plemora {

class Preferences;

/// Control Center's two preference values as they are stored, undecoded.
struct StoredLayout {
  std::string controls;
  std::string boxes;

  bool operator==(const StoredLayout&) const = default;
};

/// Which of the two values is on disk first. A grid whose controls are missing could not be told
/// from anybody's, so what adds controls stores them first and what removes them stores them last.
enum class StoreOrder { controlsFirst, boxesFirst };

/// Throws ControlCenterLayout::Failure unreadable unless both are there.
StoredLayout readStoredLayout(Preferences& preferences);

/// Stores and synchronizes one, then the other. When either fails it puts back what was there
/// before, as far as it was readable, and throws ControlCenterLayout::NotStored.
void writeStoredLayout(Preferences& preferences, const StoredLayout& layout, StoreOrder order);

}  // namespace plemora
