#pragma once

#include <map>
#include <set>
#include <string>

#include "platform/files.h"

namespace plemora {

/// Files in memory. A file needs its folder, as on a disk. Main thread.
class MemoryFiles : public Files {
 public:
  explicit MemoryFiles(std::string applicationSupport = "/Library/Application Support");

  std::string applicationSupport() override { return applicationSupport_; }
  bool exists(const std::string& path) override;
  std::optional<std::string> read(const std::string& path) override;
  bool writeAtomically(const std::string& path, const std::string& bytes) override;
  bool remove(const std::string& path) override;
  bool makeFolder(const std::string& path) override;

 private:
  std::string applicationSupport_;
  std::map<std::string, std::string> files_;
  std::set<std::string> folders_ = {"/"};
};

}  // namespace plemora
