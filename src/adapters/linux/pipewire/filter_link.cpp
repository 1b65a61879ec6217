#include "adapters/linux/pipewire/filter_link.h"

#include <string>
#include <utility>

namespace plemora {

FilterLink::FilterLink(pw_core* core, std::uint32_t outputNode, std::uint32_t outputPort,
                       std::uint32_t inputNode, std::uint32_t inputPort,
                       std::function<void()> changed)
    : changed_(std::move(changed)) {
  const std::string ids[] = {std::to_string(outputNode), std::to_string(outputPort),
                             std::to_string(inputNode), std::to_string(inputPort)};
  const spa_dict_item items[] = {
      {PW_KEY_LINK_OUTPUT_NODE, ids[0].c_str()},
      {PW_KEY_LINK_OUTPUT_PORT, ids[1].c_str()},
      {PW_KEY_LINK_INPUT_NODE, ids[2].c_str()},
      {PW_KEY_LINK_INPUT_PORT, ids[3].c_str()},
      {PW_KEY_LINK_PASSIVE, "true"},
      {PW_KEY_OBJECT_LINGER, "false"},
  };
  const spa_dict properties{0, std::size(items), items};
  proxy_ = OwnedProxy(pw_core_create_object(core, "link-factory", PW_TYPE_INTERFACE_Link,
                                            PW_VERSION_LINK, &properties, 0));
  if (!proxy_) {
    gone_ = true;
    return;
  }
  static const pw_proxy_events proxyEvents = [] {
    pw_proxy_events made{};
    made.version = PW_VERSION_PROXY_EVENTS;
    made.removed = [](void* data) {
      auto& self = *static_cast<FilterLink*>(data);
      self.gone_ = true;
      self.changed_();
    };
    made.error = [](void* data, int, int, const char*) {
      auto& self = *static_cast<FilterLink*>(data);
      self.gone_ = true;
      self.changed_();
    };
    return made;
  }();
  static const pw_link_events linkEvents = [] {
    pw_link_events made{};
    made.version = PW_VERSION_LINK_EVENTS;
    made.info = [](void* data, const pw_link_info* info) {
      auto& self = *static_cast<FilterLink*>(data);
      self.state_ = info->state;
      self.gone_ = self.gone_ || info->state < PW_LINK_STATE_INIT;
      self.changed_();
    };
    return made;
  }();
  pw_proxy_add_listener(proxy_.get(), proxyHook_.get(), &proxyEvents, this);
  pw_link_add_listener(proxy_.as<pw_link>(), linkHook_.get(), &linkEvents, this);
}

}  // namespace plemora
