#pragma once

#include <pipewire/extensions/metadata.h>
#include <pipewire/pipewire.h>

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "support/pipewire/graph_view.h"

namespace plemora::rig {

std::string valueOf(const Properties& properties, const std::string& key);
std::uint32_t numberOf(const Properties& properties, const std::string& key);

/// The connection and the mirror of the server's objects behind a GraphView. Everything with the
/// loop locked.
struct GraphView::Impl {
  struct LinkView {
    std::uint32_t outputNode = 0;
    std::uint32_t inputNode = 0;
    bool isActive = false;
  };
  /// An object of the server: what is known of it, and its proxy if it is one to watch.
  struct Object {
    std::uint32_t id = 0;
    std::string type;
    Properties properties;
    pw_proxy* proxy = nullptr;
    spa_hook listener{};
    std::string state;
    LinkView link;
    std::map<std::pair<std::uint32_t, std::string>, std::string> metadata;

    ~Object();
  };
  struct Sink {
    SinkOptions options;
    pw_proxy* proxy;
  };

  void connect(const std::string& socket);
  void disconnect();
  /// A round trip to the server; false when the connection is gone.
  bool roundTrip();
  Object* metadataObject(const std::string& name);
  pw_proxy* makeSink(const SinkOptions& options) const;
  NodeView view(const Object& object) const { return {object.id, object.properties, object.state}; }

  static void onDone(void* data, std::uint32_t id, int sequence);
  static void onError(void* data, std::uint32_t id, int, int result, const char*);
  static void onNodeInfo(void* data, const pw_node_info* info);
  static void onLinkInfo(void* data, const pw_link_info* info);
  static int onMetadata(void* data, std::uint32_t subject, const char* key, const char*,
                        const char* value);
  static void onGlobal(void* data, std::uint32_t id, std::uint32_t, const char* type, std::uint32_t,
                       const spa_dict* properties);
  static void onGlobalRemove(void* data, std::uint32_t id);

  pw_thread_loop* loop = nullptr;
  pw_context* context = nullptr;
  pw_core* core = nullptr;
  pw_registry* registry = nullptr;
  spa_hook coreListener{};
  spa_hook registryListener{};
  int lastSeen = -1;
  bool lost = false;
  std::map<std::uint32_t, std::unique_ptr<Object>> objects;
  std::map<std::string, Sink> sinks;
  std::map<int, pw_proxy*> madeLinks;
};

}  // namespace plemora::rig
