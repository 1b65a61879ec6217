#pragma once

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "main/stage/stage_world.h"

namespace plemora {

/// Looks at every frame whether the module that the program draws over its tiles keeps to what it
/// promises: it never takes a click, stands nowhere but over the tiles, goes with Control Center's
/// panel and keeps out of edit mode. What the program can only learn from the next frame is let
/// pass for one.
class OverlayWatch {
 public:
  explicit OverlayWatch(StageWorld& world) : world_(world) {}

  /// Called for each frame.
  void look() {
    ++frames_;
    StageWindow* overlay = shown();
    if (overlay == nullptr) {
      since_.clear();
      return;
    }
    ++framesShown_;
    StageDesktop& desktop = world_.desktop;
    const Rect frame = overlay->frame();
    const auto hit = desktop.windowServer.hit({frame.midX(), frame.midY()});
    check(!hit || hit->number != overlay->number, "it takes clicks", 0);
    const bool isHeld = (desktop.input.pressedMouseButtons() & leftMouseButton) != 0;
    if (isHeld) {
      return;
    }
    const StageControlCenter& center = desktop.controlCenter;
    check(center.isOnScreen() && center.alpha() > 0, "Control Center is gone", 1);
    check(!center.isEditing(), "Control Center is being edited", 1);
    check(desktop.accessibility.isTrusted(), "there is no trust", 1);
    check(isOverTiles(frame), "it is not over the tiles", 1);
  }

  /// What it was seen to do, and at which frame it was.
  const std::vector<std::string>& faults() const { return faults_; }
  int framesShown() const { return framesShown_; }

 private:
  StageWindow* shown() {
    for (StageWindow* window : world_.desktop.windows.visible()) {
      if (window->options.identifier == "skin" && window->alpha() > 0) {
        return window;
      }
    }
    return nullptr;
  }

  /// Its corners are those of one or two tiles.
  bool isOverTiles(const Rect& frame) {
    const StageControlCenter& center = world_.desktop.controlCenter;
    bool beginsAtTile = false;
    bool endsAtTile = false;
    for (const StageTile& tile : center.shownTiles()) {
      const Rect place = center.panel().tile(tile);
      if (tile.control && place.y == frame.y && place.height == frame.height) {
        beginsAtTile = beginsAtTile || place.minX() == frame.minX();
        endsAtTile = endsAtTile || place.maxX() == frame.maxX();
      }
    }
    return beginsAtTile && endsAtTile;
  }

  /// A fault once it has been wrong for more frames in a row than allowed.
  void check(bool isRight, const std::string& what, int allowed) {
    int& wrong = since_[what];
    wrong = isRight ? 0 : wrong + 1;
    if (wrong == allowed + 1) {
      faults_.push_back("frame " + std::to_string(frames_) + ": " + what);
    }
  }

  StageWorld& world_;
  int frames_ = 0;
  int framesShown_ = 0;
  std::map<std::string, int> since_;  // frames in a row
  std::vector<std::string> faults_;
};

}  // namespace plemora
