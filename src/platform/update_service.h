#pragma once

#include <optional>
#include <string>

namespace plemora {

/// Keeps the program up to date, or says who does. Main thread.
class UpdateService {
 public:
  virtual ~UpdateService() = default;

  /// Begins to look for updates as the platform does; a text that says why when that fails.
  virtual std::optional<std::string> start() = 0;

  /// The user asks for updates, and is shown what came of it.
  virtual void checkForUpdates() = 0;
};

}  // namespace plemora
