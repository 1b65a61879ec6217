#include "adapters/linux/pipewire/graph_mirror.h"

#include <pipewire/extensions/metadata.h>

#include <nlohmann/json.hpp>
#include <utility>

#include "adapters/linux/pipewire/volume_params.h"

namespace plemora {

namespace {

NodeKind kindOf(const std::string& mediaClass) {
  if (mediaClass == "Stream/Output/Audio") {
    return NodeKind::stream;
  }
  return mediaClass == "Audio/Sink" || mediaClass == "Audio/Duplex" ? NodeKind::sink
                                                                    : NodeKind::other;
}

}  // namespace

GraphMirror::GraphMirror(pw_core* core, std::function<void()> onChange)
    : onChange_(std::move(onChange)),
      registry_(pw_core_get_registry(core, PW_VERSION_REGISTRY, 0)) {
  static const pw_registry_events events = [] {
    pw_registry_events made{};
    made.version = PW_VERSION_REGISTRY_EVENTS;
    made.global = [](void* data, std::uint32_t id, std::uint32_t permissions, const char* type,
                     std::uint32_t, const spa_dict* properties) {
      static_cast<GraphMirror*>(data)->added(id, permissions, type, properties);
    };
    made.global_remove = [](void* data, std::uint32_t id) {
      static_cast<GraphMirror*>(data)->removed(id);
    };
    return made;
  }();
  if (registry_) {
    pw_registry_add_listener(registry(), registryHook_.get(), &events, this);
  }
}

GraphMirror::~GraphMirror() = default;

void GraphMirror::added(std::uint32_t id, std::uint32_t permissions, const std::string& type,
                        const spa_dict* dict) {
  PropertyMap properties;
  mergeProperties(properties, dict);
  if (type == PW_TYPE_INTERFACE_Core) {
    mayLink_ = (permissions & PW_PERM_X) != 0;
  } else if (type == PW_TYPE_INTERFACE_Client) {
    clients_[id] = {nextSerial_++, mediaTime(), std::move(properties), false};
  } else if (type == PW_TYPE_INTERFACE_Node) {
    addNode(id, std::move(properties));
  } else if (type == PW_TYPE_INTERFACE_Port) {
    addPort(id, properties);
  } else if (type == PW_TYPE_INTERFACE_Link) {
    addLink(id, properties);
  } else if (type == PW_TYPE_INTERFACE_Metadata) {
    addMetadata(id, properties);
  } else if (type == PW_TYPE_INTERFACE_Device &&
             propertyOf(properties, PW_KEY_MEDIA_CLASS) == "Audio/Device") {
    cards_[id].properties = std::move(properties);
    bound_[id] = bindCard(registry(), id, cards_[id], onChange_);
  } else {
    return;
  }
  onChange_();
}

void GraphMirror::addNode(std::uint32_t id, PropertyMap properties) {
  NodeRecord record;
  record.kind = kindOf(propertyOf(properties, PW_KEY_MEDIA_CLASS));
  record.clientId = numberOf(properties, PW_KEY_CLIENT_ID);
  record.properties = std::move(properties);
  record.serial = nextSerial_++;
  NodeRecord& kept = nodes_[id] = std::move(record);
  if (kept.kind != NodeKind::other) {
    bound_[id] = bindNode(registry(), id, kept, onChange_);
  }
  // Who plays is told by the full properties of the client, which are not announced.
  const auto client = clients_.find(kept.clientId);
  if (kept.kind == NodeKind::stream && client != clients_.end() &&
      !bound_.contains(kept.clientId)) {
    bound_[kept.clientId] = bindClient(registry(), kept.clientId, client->second, onChange_);
  }
}

void GraphMirror::addPort(std::uint32_t id, const PropertyMap& properties) {
  PortRecord record;
  record.nodeId = numberOf(properties, PW_KEY_NODE_ID);
  record.index = numberOf(properties, PW_KEY_PORT_ID);
  record.isInput = propertyOf(properties, PW_KEY_PORT_DIRECTION) == "in";
  record.isMonitor = propertyOf(properties, PW_KEY_PORT_MONITOR) == "true";
  record.isControl = propertyOf(properties, PW_KEY_FORMAT_DSP).find("midi") != std::string::npos ||
                     propertyOf(properties, PW_KEY_PORT_CONTROL) == "true";
  record.name = propertyOf(properties, PW_KEY_PORT_NAME);
  record.channel = propertyOf(properties, PW_KEY_AUDIO_CHANNEL);
  ports_[id] = std::move(record);
}

void GraphMirror::addLink(std::uint32_t id, const PropertyMap& properties) {
  LinkRecord record;
  record.outputNode = numberOf(properties, PW_KEY_LINK_OUTPUT_NODE);
  record.outputPort = numberOf(properties, PW_KEY_LINK_OUTPUT_PORT);
  record.inputNode = numberOf(properties, PW_KEY_LINK_INPUT_NODE);
  record.inputPort = numberOf(properties, PW_KEY_LINK_INPUT_PORT);
  record.serial = nextSerial_++;
  record.since = mediaTime();
  links_[id] = record;
  const auto output = nodes_.find(record.outputNode);
  const auto input = nodes_.find(record.inputNode);
  const bool isDirect = output != nodes_.end() && output->second.kind == NodeKind::stream &&
                        input != nodes_.end() && input->second.kind == NodeKind::sink;
  if (isDirect) {
    bound_[id] = bindLink(registry(), id, links_[id], onChange_);
  }
}

void GraphMirror::addMetadata(std::uint32_t id, const PropertyMap& properties) {
  const std::string& name = propertyOf(properties, PW_KEY_METADATA_NAME);
  if (name == "default") {
    defaultsId_ = id;
    bound_[id] = bindMetadata(registry(), id, defaults_, [this] {
      noteDefaultSink();
      onChange_();
    });
  } else if (name == "settings") {
    bound_[id] = bindMetadata(registry(), id, settings_, onChange_);
  }
}

void GraphMirror::noteDefaultSink() {
  const auto json =
      nlohmann::json::parse(propertyOf(defaults_, "default.audio.sink"), nullptr, false);
  if (json.is_object() && json.contains("name") && json["name"].is_string()) {
    defaultSink_ = json["name"].get<std::string>();
  }
}

std::uint32_t GraphMirror::clockRate() const {
  const std::uint32_t forced = numberOf(settings_, "clock.force-rate");
  return forced != 0 ? forced : numberOf(settings_, "clock.rate");
}

std::uint32_t GraphMirror::clockQuantum() const {
  const std::uint32_t forced = numberOf(settings_, "clock.force-quantum");
  return forced != 0 ? forced : numberOf(settings_, "clock.quantum");
}

void GraphMirror::removed(std::uint32_t id) {
  bound_.erase(id);
  if (id == defaultsId_) {
    defaultsId_ = 0;
  }
  const auto gone = clients_.erase(id) + nodes_.erase(id) + ports_.erase(id) + links_.erase(id) +
                    cards_.erase(id);
  if (gone > 0) {
    onChange_();
  }
}

bool GraphMirror::setDefaultSink(const std::string& nodeName) {
  const auto metadata = bound_.find(defaultsId_);
  if (metadata == bound_.end() || !metadata->second) {
    return false;
  }
  const std::string value = nlohmann::json{{"name", nodeName}}.dump();
  return pw_metadata_set_property(metadata->second->as<pw_metadata>(), PW_ID_CORE,
                                  "default.configured.audio.sink", "Spa:String:JSON",
                                  value.c_str()) >= 0;
}

bool GraphMirror::setNodeVolume(std::uint32_t nodeId, const VolumeState& volume) {
  const auto bound = bound_.find(nodeId);
  const auto record = nodes_.find(nodeId);
  if (bound == bound_.end() || !bound->second || record == nodes_.end() ||
      record->second.kind != NodeKind::sink) {
    return false;
  }
  const auto pod = buildVolume(volume);
  if (pw_node_set_param(bound->second->as<pw_node>(), SPA_PARAM_Props, 0,
                        reinterpret_cast<const spa_pod*>(pod.data())) < 0) {
    return false;
  }
  record->second.volume = volume;
  onChange_();
  return true;
}

bool GraphMirror::setRouteVolume(std::uint32_t cardId, const RouteRecord& route,
                                 const VolumeState& volume) {
  const auto bound = bound_.find(cardId);
  const auto card = cards_.find(cardId);
  if (bound == bound_.end() || !bound->second || card == cards_.end()) {
    return false;
  }
  const auto pod = buildRouteVolume(route, volume);
  if (pw_device_set_param(bound->second->as<pw_device>(), SPA_PARAM_Route, 0,
                          reinterpret_cast<const spa_pod*>(pod.data())) < 0) {
    return false;
  }
  for (RouteRecord& known : card->second.routes) {
    if (known.device == route.device) {
      known.volume = volume;
    }
  }
  onChange_();
  return true;
}

}  // namespace plemora
