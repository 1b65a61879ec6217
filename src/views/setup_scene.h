#pragma once

#include "views/component_scene.h"

namespace plemora {

class Appearance;
struct SetupView;

/// The setup window's content as a Qt Quick item: draws the page of a SetupView, 560 points wide,
/// and hands the user's gestures to it. Its top 40 points are free for the window's own buttons.
class SetupScene : public ComponentScene {
 public:
  /// Both outlive the scene.
  SetupScene(SetupView& view, Appearance& appearance);

  /// Whether it paints its own ground; by itself it leaves that to the window's effect.
  void setOpaque(bool isOpaque);
};

}  // namespace plemora
