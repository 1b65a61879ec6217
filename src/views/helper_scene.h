#pragma once

#include "views/component_scene.h"

namespace plemora {

class Appearance;
struct HelperView;

/// The docked helper as a Qt Quick item: draws the page of a HelperView on the dark glass of its
/// window, 468 points wide, and hands the user's gestures to it.
class HelperScene : public ComponentScene {
 public:
  static constexpr double width = 468;  ///< points

  /// Both outlive the scene.
  HelperScene(HelperView& view, Appearance& appearance);
};

}  // namespace plemora
