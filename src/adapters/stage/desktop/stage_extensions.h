#pragma once

#include <functional>
#include <string>
#include <vector>

namespace plemora {

/// A control for Control Center that an installed app offers through an extension. Its code is the
/// app's own.
struct StageControlExtension {
  std::string extensionID;  ///< bundle identifier of the extension
  std::string containerID;  ///< of the app that holds it
  std::string kind;
  std::string displayName;
  std::string description;
  std::function<void()> perform;  ///< what a press on the control does
  /// Whether the control shows nothing for now: its app draws over it. Empty: never.
  std::function<bool()> isBlank{};

  bool isControl(const std::string& id, const std::string& kindOfControl) const {
    return extensionID == id && kind == kindOfControl;
  }
};

/// Those that are installed. Main thread.
struct StageExtensions {
  std::vector<StageControlExtension> installed;

  const StageControlExtension* find(const std::string& extensionID, const std::string& kind) const {
    for (const auto& extension : installed) {
      if (extension.isControl(extensionID, kind)) {
        return &extension;
      }
    }
    return nullptr;
  }
};

}  // namespace plemora
