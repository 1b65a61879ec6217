#include "adapters/linux/pipewire/bound_objects.h"

#include <pipewire/extensions/metadata.h>

#include <utility>

#include "adapters/linux/pipewire/volume_params.h"

namespace plemora {

namespace {

template <typename Record>
struct Bound : BoundObject {
  Bound(void* proxy, Record& target, RecordChanged notify)
      : BoundObject(proxy), record(target), changed(std::move(notify)) {}

  static Bound& from(void* data) { return *static_cast<Bound*>(data); }

  Record& record;
  RecordChanged changed;
};

template <typename Record>
std::unique_ptr<Bound<Record>> makeBound(pw_registry* registry, std::uint32_t id, const char* type,
                                         std::uint32_t version, Record& record,
                                         RecordChanged changed) {
  void* proxy = pw_registry_bind(registry, id, type, version, 0);
  return proxy == nullptr ? nullptr
                          : std::make_unique<Bound<Record>>(proxy, record, std::move(changed));
}

void onClientInfo(void* data, const pw_client_info* info) {
  auto& self = Bound<ClientRecord>::from(data);
  mergeProperties(self.record.properties, info->props);
  self.record.isComplete = true;
  self.changed();
}

void onNodeInfo(void* data, const pw_node_info* info) {
  auto& self = Bound<NodeRecord>::from(data);
  self.record.isRunning = info->state == PW_NODE_STATE_RUNNING;
  mergeProperties(self.record.properties, info->props);
  self.changed();
}

void onNodeParam(void* data, int, std::uint32_t id, std::uint32_t, std::uint32_t,
                 const spa_pod* param) {
  auto& self = Bound<NodeRecord>::from(data);
  if (id == SPA_PARAM_Props) {
    if (auto volume = parseVolume(param)) {
      self.record.volume = std::move(volume);
      self.changed();
    }
  }
}

void onLinkInfo(void* data, const pw_link_info* info) {
  auto& self = Bound<LinkRecord>::from(data);
  if (info->state == PW_LINK_STATE_ACTIVE && !self.record.wasActive) {
    self.record.wasActive = true;
    self.changed();
  }
}

void onCardInfo(void* data, const pw_device_info* info) {
  auto& self = Bound<CardRecord>::from(data);
  mergeProperties(self.record.properties, info->props);
  self.changed();
}

void onCardParam(void* data, int, std::uint32_t id, std::uint32_t index, std::uint32_t,
                 const spa_pod* param) {
  auto& self = Bound<CardRecord>::from(data);
  if (id != SPA_PARAM_Route) {
    return;
  }
  auto& routes = self.record.routes;
  if (index == 0) {
    routes.clear();
  }
  if (auto route = parseRoute(param)) {
    std::erase_if(routes, [&](const auto& known) { return known.device == route->device; });
    routes.push_back(std::move(*route));
  }
  self.changed();
}

int onMetadataProperty(void* data, std::uint32_t subject, const char* key, const char*,
                       const char* value) {
  auto& self = Bound<PropertyMap>::from(data);
  if (subject != PW_ID_CORE) {
    return 0;
  }
  if (key == nullptr) {
    self.record.clear();
  } else if (value == nullptr) {
    self.record.erase(key);
  } else {
    self.record[key] = value;
  }
  self.changed();
  return 0;
}

}  // namespace

void mergeProperties(PropertyMap& into, const spa_dict* properties) {
  if (properties == nullptr) {
    return;
  }
  const spa_dict_item* item = nullptr;
  spa_dict_for_each(item, properties) {
    if (item->key != nullptr && item->value != nullptr) {
      into[item->key] = item->value;
    }
  }
}

std::unique_ptr<BoundObject> bindClient(pw_registry* registry, std::uint32_t id,
                                        ClientRecord& record, RecordChanged changed) {
  static const pw_client_events events = [] {
    pw_client_events made{};
    made.version = PW_VERSION_CLIENT_EVENTS;
    made.info = onClientInfo;
    return made;
  }();
  auto bound = makeBound(registry, id, PW_TYPE_INTERFACE_Client, PW_VERSION_CLIENT, record,
                         std::move(changed));
  if (bound) {
    pw_client_add_listener(bound->template as<pw_client>(), bound->hook().get(), &events,
                           bound.get());
  }
  return bound;
}

std::unique_ptr<BoundObject> bindNode(pw_registry* registry, std::uint32_t id, NodeRecord& record,
                                      RecordChanged changed) {
  static const pw_node_events events = [] {
    pw_node_events made{};
    made.version = PW_VERSION_NODE_EVENTS;
    made.info = onNodeInfo;
    made.param = onNodeParam;
    return made;
  }();
  auto bound =
      makeBound(registry, id, PW_TYPE_INTERFACE_Node, PW_VERSION_NODE, record, std::move(changed));
  if (bound) {
    auto* node = bound->template as<pw_node>();
    pw_node_add_listener(node, bound->hook().get(), &events, bound.get());
    if (record.kind == NodeKind::sink) {
      std::uint32_t params[] = {SPA_PARAM_Props};
      pw_node_subscribe_params(node, params, 1);
    }
  }
  return bound;
}

std::unique_ptr<BoundObject> bindLink(pw_registry* registry, std::uint32_t id, LinkRecord& record,
                                      RecordChanged changed) {
  static const pw_link_events events = [] {
    pw_link_events made{};
    made.version = PW_VERSION_LINK_EVENTS;
    made.info = onLinkInfo;
    return made;
  }();
  auto bound =
      makeBound(registry, id, PW_TYPE_INTERFACE_Link, PW_VERSION_LINK, record, std::move(changed));
  if (bound) {
    pw_link_add_listener(bound->template as<pw_link>(), bound->hook().get(), &events, bound.get());
  }
  return bound;
}

std::unique_ptr<BoundObject> bindCard(pw_registry* registry, std::uint32_t id, CardRecord& record,
                                      RecordChanged changed) {
  static const pw_device_events events = [] {
    pw_device_events made{};
    made.version = PW_VERSION_DEVICE_EVENTS;
    made.info = onCardInfo;
    made.param = onCardParam;
    return made;
  }();
  auto bound = makeBound(registry, id, PW_TYPE_INTERFACE_Device, PW_VERSION_DEVICE, record,
                         std::move(changed));
  if (bound) {
    auto* card = bound->template as<pw_device>();
    pw_device_add_listener(card, bound->hook().get(), &events, bound.get());
    std::uint32_t params[] = {SPA_PARAM_Route};
    pw_device_subscribe_params(card, params, 1);
  }
  return bound;
}

std::unique_ptr<BoundObject> bindMetadata(pw_registry* registry, std::uint32_t id,
                                          PropertyMap& record, RecordChanged changed) {
  static const pw_metadata_events events = [] {
    pw_metadata_events made{};
    made.version = PW_VERSION_METADATA_EVENTS;
    made.property = onMetadataProperty;
    return made;
  }();
  auto bound = makeBound(registry, id, PW_TYPE_INTERFACE_Metadata, PW_VERSION_METADATA, record,
                         std::move(changed));
  if (bound) {
    pw_metadata_add_listener(bound->template as<pw_metadata>(), bound->hook().get(), &events,
                             bound.get());
  }
  return bound;
}

}  // namespace plemora
