#include "support/pipewire/graph_view.h"

#include <pipewire/extensions/metadata.h>
#include <pipewire/pipewire.h>
#include <spa/node/command.h>
#include <spa/param/props.h>
#include <spa/pod/builder.h>
#include <spa/utils/result.h>

#include <algorithm>
#include <stdexcept>

#include "support/pipewire/loop_lock.h"
#include "support/wait.h"

namespace plemora::rig {

namespace {

Properties toMap(const spa_dict* dictionary) {
  Properties result;
  if (dictionary != nullptr) {
    for (std::uint32_t i = 0; i < dictionary->n_items; ++i) {
      result[dictionary->items[i].key] = dictionary->items[i].value;
    }
  }
  return result;
}

std::string valueOf(const Properties& properties, const std::string& key) {
  const auto found = properties.find(key);
  return found == properties.end() ? std::string() : found->second;
}

std::uint32_t numberOf(const Properties& properties, const std::string& key) {
  const auto text = valueOf(properties, key);
  return text.empty() ? 0 : static_cast<std::uint32_t>(std::stoul(text));
}

const char* positions(int channels) {
  return channels == 1 ? "MONO" : channels == 2 ? "FL,FR" : "FL,FR,FC,LFE,RL,RR";
}

}  // namespace

std::string NodeView::get(const std::string& key) const {
  return valueOf(properties, key);
}

struct GraphView::Impl {
  /// A bound object: its proxy, its listeners, and what is known of it.
  struct Object {
    Impl* owner = nullptr;
    std::uint32_t id = 0;
    std::string type;
    Properties properties;
    pw_proxy* proxy = nullptr;
    spa_hook listener{};
    std::string state;
    LinkView link;
    std::map<std::pair<std::uint32_t, std::string>, std::string> metadata;

    ~Object() {
      if (proxy != nullptr) {
        spa_hook_remove(&listener);
        pw_proxy_destroy(proxy);
      }
    }
  };

  pw_thread_loop* loop = nullptr;
  pw_context* context = nullptr;
  pw_core* core = nullptr;
  pw_registry* registry = nullptr;
  spa_hook coreListener{};
  spa_hook registryListener{};
  int lastSeen = -1;
  bool lost = false;
  std::map<std::uint32_t, std::unique_ptr<Object>> objects;
  struct Sink {
    SinkOptions options;
    pw_proxy* proxy;
  };
  std::map<std::string, Sink> sinks;
  std::vector<pw_proxy*> made;

  static void onDone(void* data, std::uint32_t id, int sequence) {
    auto* self = static_cast<Impl*>(data);
    if (id == PW_ID_CORE) {
      self->lastSeen = sequence;
      pw_thread_loop_signal(self->loop, false);
    }
  }

  static void onError(void* data, std::uint32_t id, int, int result, const char*) {
    auto* self = static_cast<Impl*>(data);
    if (id == PW_ID_CORE && result == -EPIPE) {
      self->lost = true;
      pw_thread_loop_signal(self->loop, false);
    }
  }

  static void onNodeInfo(void* data, const pw_node_info* info) {
    auto* object = static_cast<Object*>(data);
    object->state = pw_node_state_as_string(info->state);
    if ((info->change_mask & PW_NODE_CHANGE_MASK_PROPS) != 0) {
      object->properties = toMap(info->props);
    }
  }

  static void onLinkInfo(void* data, const pw_link_info* info) {
    static_cast<Object*>(data)->link = {info->id, info->output_node_id, info->input_node_id,
                                        info->state == PW_LINK_STATE_ACTIVE};
  }

  static int onMetadata(void* data, std::uint32_t subject, const char* key, const char*,
                        const char* value) {
    auto* object = static_cast<Object*>(data);
    if (key == nullptr) {
      std::erase_if(object->metadata,
                    [&](const auto& entry) { return entry.first.first == subject; });
    } else if (value == nullptr) {
      object->metadata.erase({subject, key});
    } else {
      object->metadata[{subject, key}] = value;
    }
    return 0;
  }

  static void onGlobal(void* data, std::uint32_t id, std::uint32_t, const char* type, std::uint32_t,
                       const spa_dict* properties) {
    static const pw_node_events nodeEvents = {
        .version = PW_VERSION_NODE_EVENTS, .info = onNodeInfo, .param = nullptr};
    static const pw_link_events linkEvents = {.version = PW_VERSION_LINK_EVENTS,
                                              .info = onLinkInfo};
    static const pw_metadata_events metadataEvents = {.version = PW_VERSION_METADATA_EVENTS,
                                                      .property = onMetadata};
    auto* self = static_cast<Impl*>(data);
    auto object = std::make_unique<Object>();
    object->owner = self;
    object->id = id;
    object->type = type;
    object->properties = toMap(properties);
    const auto bind = [&](std::uint32_t version, const void* events) {
      object->proxy =
          static_cast<pw_proxy*>(pw_registry_bind(self->registry, id, type, version, 0));
      pw_proxy_add_object_listener(object->proxy, &object->listener, events, object.get());
    };
    if (object->type == PW_TYPE_INTERFACE_Node) {
      bind(PW_VERSION_NODE, &nodeEvents);
    } else if (object->type == PW_TYPE_INTERFACE_Link) {
      bind(PW_VERSION_LINK, &linkEvents);
    } else if (object->type == PW_TYPE_INTERFACE_Metadata) {
      bind(PW_VERSION_METADATA, &metadataEvents);
    }
    self->objects[id] = std::move(object);
  }

  static void onGlobalRemove(void* data, std::uint32_t id) {
    static_cast<Impl*>(data)->objects.erase(id);
  }

  Object* metadataObject(const std::string& name) {
    for (auto& [id, object] : objects) {
      if (object->type == PW_TYPE_INTERFACE_Metadata &&
          valueOf(object->properties, "metadata.name") == name) {
        return object.get();
      }
    }
    return nullptr;
  }

  /// With the loop locked.
  bool roundTrip() {
    const int sequence = pw_core_sync(core, PW_ID_CORE, 0);
    while (!lost && lastSeen != sequence) {
      if (pw_thread_loop_timed_wait(loop, 5) != 0) {
        return false;
      }
    }
    return !lost;
  }

  /// With the loop locked.
  pw_proxy* makeSink(const SinkOptions& options) const {
    const std::string channels = std::to_string(options.channels);
    const std::string priority = std::to_string(options.priority);
    const std::string rate = std::to_string(options.rate);
    const auto& description = options.description.empty() ? options.name : options.description;
    auto* properties = pw_properties_new(
        PW_KEY_FACTORY_NAME, "support.null-audio-sink", PW_KEY_NODE_NAME, options.name.c_str(),
        PW_KEY_NODE_DESCRIPTION, description.c_str(), PW_KEY_MEDIA_CLASS, "Audio/Sink",
        PW_KEY_PRIORITY_DRIVER, priority.c_str(), PW_KEY_PRIORITY_SESSION, priority.c_str(),
        "audio.channels", channels.c_str(), "audio.position", positions(options.channels),
        "monitor.channel-volumes", "true", nullptr);
    if (options.rate != 0) {
      pw_properties_set(properties, "audio.rate", rate.c_str());
    }
    auto* proxy = static_cast<pw_proxy*>(pw_core_create_object(
        core, "adapter", PW_TYPE_INTERFACE_Node, PW_VERSION_NODE, &properties->dict, 0));
    pw_properties_free(properties);
    return proxy;
  }

  NodeView view(const Object& object) const { return {object.id, object.properties, object.state}; }
};

GraphView::GraphView(const std::string& socket) : impl_(std::make_unique<Impl>()) {
  static const pw_core_events coreEvents = {.version = PW_VERSION_CORE_EVENTS,
                                            .info = nullptr,
                                            .done = Impl::onDone,
                                            .ping = nullptr,
                                            .error = Impl::onError,
                                            .remove_id = nullptr,
                                            .bound_id = nullptr,
                                            .add_mem = nullptr,
                                            .remove_mem = nullptr};
  static const pw_registry_events registryEvents = {.version = PW_VERSION_REGISTRY_EVENTS,
                                                    .global = Impl::onGlobal,
                                                    .global_remove = Impl::onGlobalRemove};
  pw_init(nullptr, nullptr);
  impl_->loop = pw_thread_loop_new("rig-graph", nullptr);
  impl_->context = pw_context_new(pw_thread_loop_get_loop(impl_->loop), nullptr, 0);
  pw_thread_loop_start(impl_->loop);
  const LoopLock lock(impl_->loop);
  impl_->core = pw_context_connect(
      impl_->context, pw_properties_new(PW_KEY_REMOTE_NAME, socket.c_str(), nullptr), 0);
  if (impl_->core == nullptr) {
    throw std::runtime_error("the rig cannot connect to " + socket);
  }
  pw_core_add_listener(impl_->core, &impl_->coreListener, &coreEvents, impl_.get());
  impl_->registry = pw_core_get_registry(impl_->core, PW_VERSION_REGISTRY, 0);
  pw_registry_add_listener(impl_->registry, &impl_->registryListener, &registryEvents, impl_.get());
  impl_->roundTrip();
  impl_->roundTrip();
}

GraphView::~GraphView() {
  pw_thread_loop_stop(impl_->loop);
  impl_->objects.clear();
  if (impl_->core != nullptr) {
    pw_proxy_destroy(reinterpret_cast<pw_proxy*>(impl_->registry));
    pw_core_disconnect(impl_->core);
  }
  pw_context_destroy(impl_->context);
  pw_thread_loop_destroy(impl_->loop);
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

std::optional<NodeView> GraphView::node(std::uint32_t id) {
  for (auto& candidate : nodes()) {
    if (candidate.id == id) {
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
                        valueOf(properties, "port.monitor") == "true",
                        valueOf(properties, "audio.channel")});
    }
  }
  return result;
}

std::vector<LinkView> GraphView::links() {
  const LoopLock lock(impl_->loop);
  std::vector<LinkView> result;
  for (const auto& [id, object] : impl_->objects) {
    if (object->type == PW_TYPE_INTERFACE_Link) {
      result.push_back(object->link);
    }
  }
  return result;
}

bool GraphView::isLinked(const std::string& from, const std::string& to) {
  const auto names = targets(from);
  return std::find(names.begin(), names.end(), to) != names.end();
}

std::vector<std::string> GraphView::targets(const std::string& name) {
  std::map<std::uint32_t, std::string> names;
  for (const auto& candidate : nodes()) {
    names[candidate.id] = candidate.name();
  }
  std::vector<std::string> result;
  for (const auto& candidate : links()) {
    const auto& target = names[candidate.inputNode];
    if (candidate.isActive && names[candidate.outputNode] == name &&
        std::find(result.begin(), result.end(), target) == result.end()) {
      result.push_back(target);
    }
  }
  return result;
}

std::optional<std::string> GraphView::metadata(const std::string& object, std::uint32_t subject,
                                               const std::string& key) {
  const LoopLock lock(impl_->loop);
  if (const auto* found = impl_->metadataObject(object)) {
    const auto value = found->metadata.find({subject, key});
    if (value != found->metadata.end()) {
      return value->second;
    }
  }
  return std::nullopt;
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

NodeView GraphView::createSink(const SinkOptions& options) {
  {
    const LoopLock lock(impl_->loop);
    impl_->sinks[options.name] = {options, impl_->makeSink(options)};
  }
  if (!eventually(5, [&] { return sync() && sinksAreReady(); })) {
    throw std::runtime_error("the sink " + options.name + " did not get its ports");
  }
  return *node(options.name);
}

void GraphView::removeSink(const std::string& name) {
  {
    const LoopLock lock(impl_->loop);
    pw_proxy_destroy(impl_->sinks.at(name).proxy);
    impl_->sinks.erase(name);
  }
  eventually(5, [&] { return sync() && !node(name).has_value(); });
}

void GraphView::recreateSinks() {
  const LoopLock lock(impl_->loop);
  for (auto& [name, sink] : impl_->sinks) {
    pw_proxy_destroy(sink.proxy);
  }
  impl_->roundTrip();
  for (auto& [name, sink] : impl_->sinks) {
    sink.proxy = impl_->makeSink(sink.options);
  }
}

bool GraphView::sinksAreReady() {
  std::map<std::string, std::size_t> wanted;
  {
    const LoopLock lock(impl_->loop);
    for (const auto& [name, sink] : impl_->sinks) {
      wanted[name] = 2 * static_cast<std::size_t>(sink.options.channels);
    }
  }
  for (const auto& [name, count] : wanted) {
    const auto found = node(name);
    if (!found || ports(found->id).size() != count) {
      return false;
    }
  }
  return true;
}

void GraphView::link(std::uint32_t outputPort, std::uint32_t inputPort, bool passive) {
  const LoopLock lock(impl_->loop);
  const std::string output = std::to_string(outputPort);
  const std::string input = std::to_string(inputPort);
  auto* properties =
      pw_properties_new(PW_KEY_LINK_OUTPUT_PORT, output.c_str(), PW_KEY_LINK_INPUT_PORT,
                        input.c_str(), PW_KEY_LINK_PASSIVE, passive ? "true" : "false", nullptr);
  impl_->made.push_back(static_cast<pw_proxy*>(pw_core_create_object(
      impl_->core, "link-factory", PW_TYPE_INTERFACE_Link, PW_VERSION_LINK, &properties->dict, 0)));
  pw_properties_free(properties);
}

void GraphView::setMetadata(const std::string& object, std::uint32_t subject,
                            const std::string& key, const std::string& type,
                            const std::string& value) {
  const LoopLock lock(impl_->loop);
  auto* found = impl_->metadataObject(object);
  if (found == nullptr) {
    throw std::runtime_error("the server has no metadata " + object);
  }
  pw_metadata_set_property(reinterpret_cast<pw_metadata*>(found->proxy), subject, key.c_str(),
                           type.empty() ? nullptr : type.c_str(),
                           value.empty() ? nullptr : value.c_str());
}

void GraphView::setVolume(std::uint32_t node, float volume, bool mute) {
  const LoopLock lock(impl_->loop);
  const auto found = impl_->objects.find(node);
  if (found == impl_->objects.end()) {
    throw std::runtime_error("no node " + std::to_string(node));
  }
  std::uint8_t bytes[512];
  spa_pod_builder builder = SPA_POD_BUILDER_INIT(bytes, sizeof bytes);
  const float volumes[2] = {volume, volume};
  spa_pod_frame frame;
  spa_pod_builder_push_object(&builder, &frame, SPA_TYPE_OBJECT_Props, SPA_PARAM_Props);
  spa_pod_builder_prop(&builder, SPA_PROP_channelVolumes, 0);
  spa_pod_builder_array(&builder, sizeof(float), SPA_TYPE_Float, 2, volumes);
  spa_pod_builder_prop(&builder, SPA_PROP_mute, 0);
  spa_pod_builder_bool(&builder, mute);
  const auto* pod = static_cast<const spa_pod*>(spa_pod_builder_pop(&builder, &frame));
  pw_node_set_param(reinterpret_cast<pw_node*>(found->second->proxy), SPA_PARAM_Props, 0, pod);
}

void GraphView::suspend(std::uint32_t node) {
  const LoopLock lock(impl_->loop);
  const auto found = impl_->objects.find(node);
  if (found != impl_->objects.end() && found->second->proxy != nullptr) {
    const spa_command command = SPA_NODE_COMMAND_INIT(SPA_NODE_COMMAND_Suspend);
    pw_node_send_command(reinterpret_cast<pw_node*>(found->second->proxy), &command);
  }
}

void GraphView::setDefaultSink(const std::string& name) {
  int asked = 0;
  const bool taken = eventually(5, [&] {
    // A session manager that has just started may not listen yet.
    if (asked++ % 64 == 0) {
      setMetadata("default", 0, "default.configured.audio.sink", "Spa:String:JSON",
                  "{ \"name\": \"" + name + "\" }");
    }
    sync();
    const auto value = metadata("default", 0, "default.audio.sink");
    return value && value->find("\"" + name + "\"") != std::string::npos;
  });
  if (!taken) {
    throw std::runtime_error("the default sink did not become " + name);
  }
}

void GraphView::forceQuantum(int frames) {
  setMetadata("settings", 0, "clock.force-quantum", "", std::to_string(frames));
  sync();
}

}  // namespace plemora::rig
