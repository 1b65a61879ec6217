#pragma once

#include <functional>
#include <string>

namespace plemora {

/// Lets the user drag files out of the program's windows. Main thread.
class FileDrag {
 public:
  virtual ~FileDrag() = default;

  /// Begins while the left button is down in one of the program's windows; the pointer takes the
  /// file's icon along until the button is let go, and ended says whether somebody took the file.
  /// False, and no such call, where nothing can be dragged.
  virtual bool begin(const std::string& path, std::function<void(bool wasTaken)> ended) = 0;
};

}  // namespace plemora
