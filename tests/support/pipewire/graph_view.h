#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace plemora::rig {

using Properties = std::map<std::string, std::string>;

struct NodeView {
  std::uint32_t id = 0;
  Properties properties;
  std::string state;  ///< "creating", "suspended", "idle", "running", "error"

  std::string get(const std::string& key) const;
  std::string name() const { return get("node.name"); }
};

struct PortView {
  std::uint32_t id = 0;
  std::uint32_t node = 0;
  bool isInput = false;
  std::string channel;
};

struct SinkOptions {
  std::string name;
  std::string description = {};  ///< empty: the name
  int channels = 2;              ///< 1, 2, 6
  int priority = 900;            ///< as a driver and as a default
};

/// A connection to a sound server that watches its whole graph, and makes null sinks, links and
/// metadata in it. What it made goes with it. Any one thread; every question is answered from what
/// has arrived so far, sync() makes sure that nothing is on its way. Throws std::runtime_error
/// when there is no connection.
class GraphView {
 public:
  /// The path of the server's socket.
  explicit GraphView(const std::string& socket);
  ~GraphView();
  GraphView(const GraphView&) = delete;
  GraphView& operator=(const GraphView&) = delete;

  /// A round trip to the server. False when the connection is gone.
  bool sync();

  std::vector<NodeView> nodes();
  std::optional<NodeView> node(const std::string& name);
  std::vector<PortView> ports(std::uint32_t node);
  /// Whether an active link leads from a node of the first name to one of the second.
  bool isLinked(const std::string& from, const std::string& to);
  /// What the metadata object ("default", "settings") holds, with keys "SUBJECT KEY".
  std::map<std::string, std::string> metadata(const std::string& object);
  bool hasMetadata(const std::string& object);

  /// Makes a null sink and waits until it has its ports.
  NodeView createSink(const SinkOptions& options);
  void removeSink(const std::string& name);
  /// Removes every sink made here and makes it anew, without waiting for its ports: a session
  /// manager has to come and give it some.
  void recreateSinks();
  /// Whether every sink made here has its ports.
  bool sinksAreReady();
  /// Links a port to another, until unlink is called with the result, one of the two goes, or this
  /// object does.
  int link(std::uint32_t outputPort, std::uint32_t inputPort);
  void unlink(int link);
  void setMetadata(const std::string& object, std::uint32_t subject, const std::string& key,
                   const std::string& type, const std::string& value);
  void setDefaultSink(const std::string& name);
  void forceQuantum(int frames);

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace plemora::rig
