#pragma once

#include <functional>
#include <optional>
#include <string>

#include "adapters/stage/desktop/stage_input.h"
#include "platform/file_drag.h"

namespace plemora {

/// A file that the pointer takes along from one of the program's windows until the left button is
/// let go. Main thread; the input outlives it.
class StageFileDrag : public FileDrag {
 public:
  /// take: a file is dropped there (global, y up); whether somebody takes it.
  StageFileDrag(StageInput& input,
                std::function<bool(const Point& location, const std::string& path)> take);
  ~StageFileDrag();
  StageFileDrag(const StageFileDrag&) = delete;
  StageFileDrag& operator=(const StageFileDrag&) = delete;

  /// Of what is on its way; none: nothing is.
  const std::optional<std::string>& path() const { return path_; }

  bool begin(const std::string& path, std::function<void(bool wasTaken)> ended) override;

 private:
  void drop();

  StageInput& input_;
  std::function<bool(const Point&, const std::string&)> take_;
  std::optional<std::string> path_;
  std::function<void(bool)> ended_;
};

}  // namespace plemora
