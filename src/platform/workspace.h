#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/image.h"
#include "base/published.h"

namespace plemora {

enum class ActivationPolicy {
  regular,     ///< an app that the user knows as such (on a Mac: it has a Dock icon)
  accessory,   ///< runs without one
  prohibited,  ///< a background process
};

struct RunningApplication {
  std::int32_t pid = -1;
  std::optional<std::string> bundleID;  ///< stable across launches and updates
  std::optional<std::string> localizedName;
  Image icon;
  ActivationPolicy activationPolicy = ActivationPolicy::prohibited;
};

/// An installed application, running or not.
struct InstalledApplication {
  std::string name;
  Image icon;
};

/// Applications of this user session. Main thread.
class Workspace {
 public:
  virtual ~Workspace() = default;

  /// The application whose process has that PID; none for a plain process. Applications count
  /// here whatever their policy.
  virtual std::optional<RunningApplication> runningApplication(std::int32_t pid) = 0;

  /// All of them, in a stable order.
  virtual std::vector<RunningApplication> runningApplications() = 0;

  /// The process that answers for the given one; none when that is not known.
  virtual std::optional<std::int32_t> responsiblePid(std::int32_t pid) = 0;

  virtual std::optional<InstalledApplication> installedApplication(const std::string& bundleID) = 0;

  /// The icon of an application that has none of its own.
  virtual Image genericApplicationIcon() = 0;

  /// Opens a URL with whatever the desktop has for it. The links of the Mac's settings are mapped
  /// to the desktop's own. False when nothing could be started.
  virtual bool openURL(const std::string& url) = 0;

  /// Reports every application that comes to the front. Nothing is reported where the desktop does
  /// not tell.
  [[nodiscard]] virtual Subscription observeActivation(
      std::function<void(std::int32_t pid)> handler) = 0;

  /// Ends an application without asking it. False when it does not run or cannot be ended.
  virtual bool forceTerminate(std::int32_t pid) = 0;
};

}  // namespace plemora
