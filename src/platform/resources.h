#pragma once

#include <optional>
#include <string>

#include "platform/layer.h"

namespace plemora {

/// The files that come with the program, and the pictures in them. Main thread.
class Resources {
 public:
  virtual ~Resources() = default;

  /// Where the file of that name and extension ("26.1", "json") is, absolute, for Files to read;
  /// none when the program comes without it.
  virtual std::optional<std::string> path(const std::string& name,
                                          const std::string& extension) = 0;
  /// The first picture of an image file, such as a PNG, from the file's bytes; none when they hold
  /// none that can be read.
  virtual std::optional<ImageContent> decodeImage(const std::string& bytes) = 0;
};

}  // namespace plemora
