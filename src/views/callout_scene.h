#pragma once

#include "views/component_scene.h"

namespace plemora {

class Appearance;
struct CalloutView;

/// The callout below the program's icon as a Qt Quick item, on the dark glass of its window. Its
/// size is that of its content.
class CalloutScene : public ComponentScene {
 public:
  /// Both outlive the scene, and the texts stay as they are.
  CalloutScene(CalloutView& view, Appearance& appearance);
};

}  // namespace plemora
