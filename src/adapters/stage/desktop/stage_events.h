#pragma once

#include <string>

#include "base/geometry.h"

namespace plemora {

enum class StageButton { left, right, middle };

/// The pointer over a window.
struct StagePointerEvent {
  enum class Phase {
    moved,    ///< no button is down
    left,     ///< it is over another window now; its position is the last one inside
    pressed,  ///< what follows up to the release goes to the same window
    dragged,
    released,
  };
  Phase phase = Phase::moved;
  StageButton button = StageButton::left;
  Point location;  ///< global, y up
  Point position;  ///< in the window, y down from its top left corner
};

struct StageScrollEvent {
  Point location;  ///< global, y up
  Point position;  ///< in the window, y down from its top left corner
  double dx = 0;   ///< points
  double dy = 0;   ///< points; positive: the content moves down
  int steps = 0;   ///< notches of a wheel; positive is up
};

struct StageKeyEvent {
  bool isDown = true;
  int keyCode = 0;         ///< virtual, as of a Mac's keyboard
  std::string text;        ///< that it types, in UTF-8; empty: none
  unsigned modifiers = 0;  ///< values of NSEvent.ModifierFlags
};

/// Takes the events of one of the program's windows, after its local monitors. A hosted view that
/// is one gets those of the window that shows it. Main thread.
class StageWindowClient {
 public:
  virtual ~StageWindowClient() = default;

  virtual void pointer(const StagePointerEvent& event) = 0;
  virtual void scroll(const StageScrollEvent& event) = 0;
  virtual void key(const StageKeyEvent& event) = 0;
};

}  // namespace plemora
