#include "support/pipewire/graph_view.h"

#include <algorithm>

#include "support/pipewire/graph_connection.h"
#include "support/pipewire/loop_lock.h"

namespace plemora::rig {

std::string NodeView::get(const std::string& key) const {
  return valueOf(properties, key);
}

GraphView::GraphView(const std::string& socket) : impl_(std::make_unique<Impl>()) {
  impl_->connect(socket);
}

GraphView::~GraphView() {
  impl_->disconnect();
}

bool GraphView::sync() {
  const LoopLock lock(impl_->loop);
  // The second trip answers what the first one's news made us ask (bound objects).
  return impl_->roundTrip() && impl_->roundTrip();
}

std::vector<NodeView> GraphView::nodes() {
  const LoopLock lock(impl_->loop);
  std::vector<NodeView> result;
  for (const auto& [id, object] : impl_->objects) {
    if (object->type == PW_TYPE_INTERFACE_Node) {
      result.push_back(impl_->view(*object));
    }
  }
  return result;
}

std::optional<NodeView> GraphView::node(const std::string& name) {
  for (auto& candidate : nodes()) {
    if (candidate.name() == name) {
      return candidate;
    }
  }
  return std::nullopt;
}

std::vector<PortView> GraphView::ports(std::uint32_t node) {
  const LoopLock lock(impl_->loop);
  std::vector<PortView> result;
  for (const auto& [id, object] : impl_->objects) {
    const auto& properties = object->properties;
    if (object->type == PW_TYPE_INTERFACE_Port && numberOf(properties, "node.id") == node) {
      result.push_back({id, node, valueOf(properties, "port.direction") == "in",
                        valueOf(properties, "audio.channel")});
    }
  }
  return result;
}

bool GraphView::isLinked(const std::string& from, const std::string& to) {
  const LoopLock lock(impl_->loop);
  const auto isNode = [this](std::uint32_t id, const std::string& name) {
    const auto found = impl_->objects.find(id);
    return found != impl_->objects.end() && valueOf(found->second->properties, "node.name") == name;
  };
  return std::any_of(impl_->objects.begin(), impl_->objects.end(), [&](const auto& entry) {
    const Impl::LinkView& link = entry.second->link;
    return link.isActive && isNode(link.outputNode, from) && isNode(link.inputNode, to);
  });
}

std::map<std::string, std::string> GraphView::metadata(const std::string& object) {
  const LoopLock lock(impl_->loop);
  std::map<std::string, std::string> result;
  if (const auto* found = impl_->metadataObject(object)) {
    for (const auto& [key, value] : found->metadata) {
      result[std::to_string(key.first) + " " + key.second] = value;
    }
  }
  return result;
}

bool GraphView::hasMetadata(const std::string& object) {
  const LoopLock lock(impl_->loop);
  return impl_->metadataObject(object) != nullptr;
}

}  // namespace plemora::rig
