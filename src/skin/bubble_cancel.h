#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/layer.h"

namespace plemora {

class Files;
class Resources;
class UserDefaults;

/// What takes the bubble look of Control Center's tiles back where the overlay lies: sets of masks,
/// each with the matrix for the colours below it, in files that come with the program. Whatever is
/// missing or cannot be read makes fewer layers, silently. Main thread; the services outlive it.
class BubbleCancel {
 public:
  /// The setting that names a folder in which files are looked for first.
  static constexpr const char* folderKey = "debugBubbleDir";

  /// One entry of a set's file.
  struct Entry {
    std::string mask;           ///< base name of a PNG file
    std::vector<float> matrix;  ///< a ColorMatrix when it has 20 numbers

    bool operator==(const Entry&) const = default;
  };

  struct Layer {
    ImageContent mask;  ///< to be stretched over the module; its alpha counts
    ColorMatrix matrix{};
  };

  BubbleCancel(UserDefaults& defaults, Files& files, Resources& resources);

  /// Where the file is; none when there is none.
  std::optional<std::string> file(const std::string& name, const std::string& extension) const;

  /// The layers of a set, from the bottom. Strength: 1 as the set has them, 0 without any effect,
  /// evenly in between; clamped to that.
  std::vector<Layer> layers(const std::string& set, float strength) const;

 private:
  std::optional<ImageContent> image(const std::string& mask) const;

  UserDefaults& defaults_;
  Files& files_;
  Resources& resources_;
};

}  // namespace plemora
