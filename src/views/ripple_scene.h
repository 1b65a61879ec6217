#pragma once

#include "views/component_scene.h"

namespace plemora {

class Appearance;

/// Rings that spread from the middle, where the program's icon is, as a Qt Quick item of 64 by 64
/// points. One ring stands still for those who want no motion. Takes no input.
class RippleScene : public ComponentScene {
 public:
  static constexpr double side = 64;  ///< points

  /// The appearance outlives the scene.
  explicit RippleScene(Appearance& appearance);
};

}  // namespace plemora
