#include "support/pipewire/graph_connection.h"

#include <cerrno>
#include <stdexcept>

#include "support/pipewire/loop_lock.h"

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

}  // namespace

std::string valueOf(const Properties& properties, const std::string& key) {
  const auto found = properties.find(key);
  return found == properties.end() ? std::string() : found->second;
}

std::uint32_t numberOf(const Properties& properties, const std::string& key) {
  const auto text = valueOf(properties, key);
  return text.empty() ? 0 : static_cast<std::uint32_t>(std::stoul(text));
}

GraphView::Impl::Object::~Object() {
  if (proxy != nullptr) {
    spa_hook_remove(&listener);
    pw_proxy_destroy(proxy);
  }
}

void GraphView::Impl::onDone(void* data, std::uint32_t id, int sequence) {
  auto* self = static_cast<Impl*>(data);
  if (id == PW_ID_CORE) {
    self->lastSeen = sequence;
    pw_thread_loop_signal(self->loop, false);
  }
}

void GraphView::Impl::onError(void* data, std::uint32_t id, int, int result, const char*) {
  auto* self = static_cast<Impl*>(data);
  if (id == PW_ID_CORE && result == -EPIPE) {
    self->lost = true;
    pw_thread_loop_signal(self->loop, false);
  }
}

void GraphView::Impl::onNodeInfo(void* data, const pw_node_info* info) {
  auto* object = static_cast<Object*>(data);
  object->state = pw_node_state_as_string(info->state);
  if ((info->change_mask & PW_NODE_CHANGE_MASK_PROPS) != 0) {
    object->properties = toMap(info->props);
  }
}

void GraphView::Impl::onLinkInfo(void* data, const pw_link_info* info) {
  static_cast<Object*>(data)->link = {info->output_node_id, info->input_node_id,
                                      info->state == PW_LINK_STATE_ACTIVE};
}

int GraphView::Impl::onMetadata(void* data, std::uint32_t subject, const char* key, const char*,
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

void GraphView::Impl::onGlobal(void* data, std::uint32_t id, std::uint32_t, const char* type,
                               std::uint32_t, const spa_dict* properties) {
  static const pw_node_events nodeEvents = {
      .version = PW_VERSION_NODE_EVENTS, .info = onNodeInfo, .param = nullptr};
  static const pw_link_events linkEvents = {.version = PW_VERSION_LINK_EVENTS, .info = onLinkInfo};
  static const pw_metadata_events metadataEvents = {.version = PW_VERSION_METADATA_EVENTS,
                                                    .property = onMetadata};
  auto* self = static_cast<Impl*>(data);
  auto object = std::make_unique<Object>();
  object->id = id;
  object->type = type;
  object->properties = toMap(properties);
  const auto bind = [&](std::uint32_t version, const void* events) {
    object->proxy = static_cast<pw_proxy*>(pw_registry_bind(self->registry, id, type, version, 0));
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

void GraphView::Impl::onGlobalRemove(void* data, std::uint32_t id) {
  static_cast<Impl*>(data)->objects.erase(id);
}

GraphView::Impl::Object* GraphView::Impl::metadataObject(const std::string& name) {
  for (auto& [id, object] : objects) {
    if (object->type == PW_TYPE_INTERFACE_Metadata &&
        valueOf(object->properties, "metadata.name") == name) {
      return object.get();
    }
  }
  return nullptr;
}

bool GraphView::Impl::roundTrip() {
  const int sequence = pw_core_sync(core, PW_ID_CORE, 0);
  while (!lost && lastSeen != sequence) {
    if (pw_thread_loop_timed_wait(loop, 5) != 0) {
      return false;
    }
  }
  return !lost;
}

void GraphView::Impl::connect(const std::string& socket) {
  static const pw_core_events coreEvents = {.version = PW_VERSION_CORE_EVENTS,
                                            .info = nullptr,
                                            .done = onDone,
                                            .ping = nullptr,
                                            .error = onError,
                                            .remove_id = nullptr,
                                            .bound_id = nullptr,
                                            .add_mem = nullptr,
                                            .remove_mem = nullptr};
  static const pw_registry_events registryEvents = {
      .version = PW_VERSION_REGISTRY_EVENTS, .global = onGlobal, .global_remove = onGlobalRemove};
  pw_init(nullptr, nullptr);
  loop = pw_thread_loop_new("rig-graph", nullptr);
  context = pw_context_new(pw_thread_loop_get_loop(loop), nullptr, 0);
  pw_thread_loop_start(loop);
  const LoopLock lock(loop);
  core = pw_context_connect(context, pw_properties_new(PW_KEY_REMOTE_NAME, socket.c_str(), nullptr),
                            0);
  if (core == nullptr) {
    throw std::runtime_error("the rig cannot connect to " + socket);
  }
  pw_core_add_listener(core, &coreListener, &coreEvents, this);
  registry = pw_core_get_registry(core, PW_VERSION_REGISTRY, 0);
  pw_registry_add_listener(registry, &registryListener, &registryEvents, this);
  roundTrip();
  roundTrip();
}

void GraphView::Impl::disconnect() {
  pw_thread_loop_stop(loop);
  objects.clear();
  if (core != nullptr) {
    pw_proxy_destroy(reinterpret_cast<pw_proxy*>(registry));
    pw_core_disconnect(core);
  }
  pw_context_destroy(context);
  pw_thread_loop_destroy(loop);
}

}  // namespace plemora::rig
