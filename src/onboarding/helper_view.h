#pragma once

#include <functional>
#include <string>
#include <vector>

#include "base/published.h"

namespace plemora {

/// A piece of the helper's instructions; a symbol may stand between the words.
struct HelperRun {
  std::string text;
  bool isStrong = false;  ///< what is to be found on the screen under that name
  std::string symbol;     ///< in place of the text; empty: none

  bool operator==(const HelperRun&) const = default;
};

/// All of the helper as it is to be drawn.
struct HelperPage {
  /// Where what it speaks of lies, seen from the helper.
  enum class Direction { none, above, left, right };

  std::vector<HelperRun> instructions;  ///< one paragraph
  Direction direction = Direction::none;
  std::string note;           ///< below the instructions; empty: none
  bool hasDragIcon = false;   ///< the program's icon, to be dragged out of the helper
  bool isDragging = false;    ///< it is on its way
  bool isBusy = false;        ///< waits for the system
  bool hasSucceeded = false;  ///< nothing but a sign of success is shown
  std::string backTitle;      ///< goes back to setup; empty: none
  std::string askTitle;       ///< has the system ask instead; empty: none
  std::string doneTitle;      ///< the user says that it is done; empty: none

  bool operator==(const HelperPage&) const = default;
};

/// The content of the docked helper. Its owner assigns the page and the callbacks; the view that
/// draws it calls the latter. Main thread.
struct HelperView {
  Published<HelperPage> page;

  std::function<void()> onBack;
  std::function<void()> onAskInstead;
  std::function<void()> onDone;
  /// The program's icon is being dragged away: called once the pointer has moved some points with
  /// the button down.
  std::function<void()> onDrag;
};

/// The content of the callout that points at the program's icon in the menu bar. Main thread.
struct CalloutView {
  std::string title;
  std::string line;
  std::string buttonTitle;
  std::string buttonSymbol;
  std::function<void()> onOpen;
};

}  // namespace plemora
