#pragma once

#include <functional>
#include <memory>

#include "glass/glass_look.h"
#include "platform/effect_view.h"

namespace plemora {

/// The layers below a visual effect, by the names that the system gives them: in the root a
/// nameless group, in that "backdrop", "fill", "tone" and "desktop tint", from the bottom. They
/// hold what tuners set; look() says what that comes to. Main thread. Layers may outlive the tree
/// and then change nothing.
class EffectTree {
 public:
  /// changed is called whenever the look may have changed.
  EffectTree(const Material& material, std::function<void()> changed);
  ~EffectTree();
  EffectTree(const EffectTree&) = delete;
  EffectTree& operator=(const EffectTree&) = delete;

  std::shared_ptr<EffectLayer> root() const;
  GlassLook look() const;

 private:
  class Node;
  struct Watcher;

  std::shared_ptr<Watcher> watcher_;  // the nodes hold it weakly
  Material material_;
  std::shared_ptr<Node> backdrop_;
  std::shared_ptr<Node> fill_;
  std::shared_ptr<Node> tone_;
  std::shared_ptr<Node> desktopTint_;
  std::shared_ptr<Node> root_;
};

}  // namespace plemora
