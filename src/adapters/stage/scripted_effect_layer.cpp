#include "adapters/stage/scripted_effect_layer.h"

namespace plemora {

ScriptedEffectLayer::Pointer ScriptedEffectLayer::systemTree() {
  std::vector<Pointer> parts;
  for (const char* name : {"backdrop", "fill", "tone", "desktop tint"}) {
    parts.push_back(std::make_shared<ScriptedEffectLayer>(name));
  }
  return std::make_shared<ScriptedEffectLayer>("", std::move(parts));
}

ScriptedEffectLayer* ScriptedEffectLayer::find(const std::string& name) {
  if (name_ == name) {
    return this;
  }
  for (const Pointer& sublayer : sublayers_) {
    if (ScriptedEffectLayer* found = sublayer->find(name)) {
      return found;
    }
  }
  return nullptr;
}

}  // namespace plemora
