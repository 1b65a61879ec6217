#pragma once

#include "adapters/stage/memory_resources.h"

namespace plemora {

class Files;

/// The program's files as a script has them, with real pictures in them. Main thread.
class PictureResources : public MemoryResources {
 public:
  std::optional<ImageContent> decodeImage(const std::string& bytes) override;

  /// Puts the files of a folder of this machine into those of the stage, under the same path. What
  /// cannot be read is left out.
  static void copyFolder(const std::string& folder, Files& files);
};

}  // namespace plemora
