#pragma once

#include <optional>
#include <string>

namespace plemora {

/// The few files that the program keeps beside its settings. Paths are absolute. Main thread.
class Files {
 public:
  virtual ~Files() = default;

  /// The user's folder for what programs keep, such as "~/Library/Application Support"; it need
  /// not exist.
  virtual std::string applicationSupport() = 0;

  virtual bool exists(const std::string& path) = 0;
  /// The content; none when it cannot be read.
  virtual std::optional<std::string> read(const std::string& path) = 0;
  /// Replaces the file whole or not at all, and has it on disk when it returns true.
  virtual bool writeAtomically(const std::string& path, const std::string& bytes) = 0;
  /// True when the file is gone afterwards.
  virtual bool remove(const std::string& path) = 0;
  /// With the folders above it. True when it is there afterwards.
  virtual bool makeFolder(const std::string& path) = 0;
};

}  // namespace plemora
