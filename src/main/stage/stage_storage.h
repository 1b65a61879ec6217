#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/files.h"
#include "platform/preferences.h"

namespace plemora {

/// Where the stage's programs store what is to outlive them.
struct StageStorage {
  /// The preferences as a program that starts now has them.
  std::function<std::unique_ptr<Preferences>()> makePreferences;
  /// Of the program.
  std::unique_ptr<Files> files;

  static StageStorage inMemory();
  /// As a Mac keeps it: property lists for all machines in the folder, those of the one with that
  /// name in "ByHost", and in "Application Support" what the program keeps for itself. The folder
  /// is made when something is stored there.
  static StageStorage inFolder(const std::string& folder, const std::string& host);
};

}  // namespace plemora
