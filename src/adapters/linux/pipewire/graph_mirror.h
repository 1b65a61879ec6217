#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "adapters/linux/pipewire/bound_objects.h"
#include "adapters/linux/pipewire/graph_records.h"
#include "adapters/linux/pipewire/remote_object.h"

namespace plemora {

/// What the server's registry holds of interest, kept up to date by its events: clients, nodes,
/// ports, links, cards and the default sink. Lives as long as one connection. Everything with the
/// loop's lock held.
class GraphMirror {
 public:
  /// The callback runs on the loop's thread after every change, once per event.
  GraphMirror(pw_core* core, std::function<void()> onChange);
  ~GraphMirror();

  const std::map<std::uint32_t, ClientRecord>& clients() const { return clients_; }
  const std::map<std::uint32_t, NodeRecord>& nodes() const { return nodes_; }
  const std::map<std::uint32_t, PortRecord>& ports() const { return ports_; }
  const std::map<std::uint32_t, LinkRecord>& links() const { return links_; }
  const std::map<std::uint32_t, CardRecord>& cards() const { return cards_; }

  /// "node.name" of the default sink; the last one known while no session manager runs.
  const std::string& defaultSink() const { return defaultSink_; }

  /// Frames per second, and frames per cycle, that the server uses when nothing asks for others;
  /// 0 while unknown.
  std::uint32_t clockRate() const;
  std::uint32_t clockQuantum() const;

  /// Whether this program may see other clients' objects and make links.
  bool mayLink() const { return mayLink_; }

  /// Each returns false when the object is not there or cannot be changed.
  bool setDefaultSink(const std::string& nodeName);
  bool setNodeVolume(std::uint32_t nodeId, const VolumeState& volume);
  bool setRouteVolume(std::uint32_t cardId, const RouteRecord& route, const VolumeState& volume);

 private:
  void added(std::uint32_t id, std::uint32_t permissions, const std::string& type,
             const spa_dict* properties);
  void removed(std::uint32_t id);
  void addNode(std::uint32_t id, PropertyMap properties);
  void addLink(std::uint32_t id, const PropertyMap& properties);
  void addPort(std::uint32_t id, const PropertyMap& properties);
  void addMetadata(std::uint32_t id, const PropertyMap& properties);
  void noteDefaultSink();
  pw_registry* registry() const { return registry_.as<pw_registry>(); }

  std::function<void()> onChange_;
  std::map<std::uint32_t, ClientRecord> clients_;
  std::map<std::uint32_t, NodeRecord> nodes_;
  std::map<std::uint32_t, PortRecord> ports_;
  std::map<std::uint32_t, LinkRecord> links_;
  std::map<std::uint32_t, CardRecord> cards_;
  PropertyMap defaults_;  ///< metadata of the session manager
  PropertyMap settings_;  ///< metadata of the server
  std::string defaultSink_;
  bool mayLink_ = false;
  std::uint64_t nextSerial_ = 1;

  OwnedProxy registry_;
  Hook registryHook_;
  std::map<std::uint32_t, std::unique_ptr<BoundObject>> bound_;
  std::uint32_t defaultsId_ = 0;  ///< in bound_; 0 while no session manager runs
};

}  // namespace plemora
