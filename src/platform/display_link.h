#pragma once

#include <functional>
#include <memory>

namespace plemora {

/// Calls of one callback, once for each frame of a display, until it is dropped (also from inside
/// the callback). Main thread.
class DisplayLink {
 public:
  virtual ~DisplayLink() = default;
};

class DisplayLinks {
 public:
  virtual ~DisplayLinks() = default;

  /// A link to the frames of the given screen (Screen::id); an unknown id means the main screen.
  [[nodiscard]] virtual std::unique_ptr<DisplayLink> makeLink(int screen,
                                                              std::function<void()> tick) = 0;
};

}  // namespace plemora
