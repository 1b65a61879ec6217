#pragma once

#include <map>
#include <string>

#include "platform/resources.h"

namespace plemora {

/// The program's files as a script has them: which there are, and what picture which bytes hold.
/// Main thread.
class MemoryResources : public Resources {
 public:
  std::map<std::string, std::string> paths;      ///< by "name.extension"
  std::map<std::string, ImageContent> pictures;  ///< by the bytes of their files

  std::optional<std::string> path(const std::string& name, const std::string& extension) override {
    const auto found = paths.find(name + "." + extension);
    return found == paths.end() ? std::nullopt : std::optional(found->second);
  }
  std::optional<ImageContent> decodeImage(const std::string& bytes) override {
    const auto found = pictures.find(bytes);
    return found == pictures.end() ? std::nullopt : std::optional(found->second);
  }
};

}  // namespace plemora
