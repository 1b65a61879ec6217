#pragma once

#include <filesystem>
#include <functional>
#include <string>

#include "platform/update_service.h"

namespace plemora {

/// Where a copy of the program comes from, and so who updates it.
struct InstalledCopy {
  enum class Origin { debianPackage, sourceCheckout, unknown };
  Origin origin = Origin::unknown;
  std::string name;              ///< of the package
  std::filesystem::path folder;  ///< of the checkout, or of the executable

  bool operator==(const InstalledCopy&) const = default;
};

/// Tells by the package manager's file lists below root, and by the folders above the executable.
InstalledCopy copyOf(const std::filesystem::path& executable,
                     const std::filesystem::path& root = "/");

/// Linux programs do not update themselves: it says how this copy is updated. Main thread.
class PackageUpdates : public UpdateService {
 public:
  /// Shows a title and a text to the user.
  using Notify = std::function<void(const std::string& title, const std::string& text)>;

  PackageUpdates(InstalledCopy copy, std::string version, Notify notify);

  std::optional<std::string> start() override;
  void checkForUpdates() override;

 private:
  InstalledCopy copy_;
  std::string version_;
  Notify notify_;
};

}  // namespace plemora
