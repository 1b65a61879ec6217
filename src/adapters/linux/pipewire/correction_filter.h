#pragma once

#include <pipewire/filter.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "adapters/linux/pipewire/correction_renderer.h"
#include "adapters/linux/pipewire/filter_connection.h"
#include "adapters/linux/pipewire/filter_link.h"
#include "adapters/linux/pipewire/graph_mirror.h"
#include "adapters/linux/pipewire/pipewire_loop.h"

namespace plemora {

/// A sink's playback ports, in the order of its channels.
struct SinkLayout {
  std::uint32_t nodeId = 0;
  std::vector<std::uint32_t> ports;  ///< global ids
  bool operator==(const SinkLayout&) const = default;
};

/// The layout of a sink; without ports while they are not known.
SinkLayout sinkLayout(const GraphMirror& mirror, std::uint32_t nodeId);

/// A node of ours in the same graph cycle as a set of sinks: inputs for the streams of taps, one
/// output per channel of each sink. A group is a sink's place in the set. Has no media class, so
/// that the session manager leaves it alone. With the loop's lock held, but for the rendering.
class CorrectionFilter : private CorrectionPorts {
 public:
  CorrectionFilter(const PipeWireLoop& loop, std::shared_ptr<FilterConnection> connection,
                   std::vector<SinkLayout> sinks, std::uint32_t slotCount,
                   CorrectionScratch& scratch, std::function<void()> onChange);
  ~CorrectionFilter() override;

  const std::shared_ptr<FilterConnection>& connection() const { return connection_; }
  const std::vector<SinkLayout>& sinks() const { return sinks_; }
  std::uint32_t slotCount() const { return slotCount_; }
  std::uint32_t groupOf(std::uint32_t sinkNode) const;

  /// Follows what the registry tells of this node and links its outputs.
  void update(const GraphMirror& mirror);

  bool isBroken() const { return broken_; }
  /// What is linked to it may go on, but nothing new can be.
  bool isSpoilt() const { return connection_->isSpoilt(); }
  /// Its ports are known: streams can be linked.
  bool isReady() const { return !inputIds_.empty(); }
  /// What it adds to that sink reaches it.
  bool outputsPrepared() const;
  bool outputsActive() const;

  /// Null until isReady, and when it is not the time for one more link.
  std::unique_ptr<FilterLink> linkInput(std::uint32_t slot, std::uint32_t channel,
                                        std::uint32_t streamNode, std::uint32_t streamPort,
                                        double now) const;

  /// Index of a slot's first port, for CorrectionSlot::port.
  std::uint32_t firstPort(std::uint32_t slot) const { return slot * slotChannels_; }
  std::uint32_t slotChannels() const { return slotChannels_; }

  /// Makes the plan the one that is rendered from the next cycle on; the old plan and the slots
  /// that it named are no longer used when this returns. The work runs at that same moment on the
  /// real-time thread.
  void install(CorrectionPlan plan);

  /// Counts cycles since creation.
  std::uint64_t cycles() const { return cycles_.load(std::memory_order_relaxed); }

 private:
  /// Beside each other rather than in the memory that the library keeps for each port: the
  /// real-time thread asks all of them in each cycle.
  struct Port {
    void* data = nullptr;                     ///< by which the library knows it
    std::uint64_t cycle = ~std::uint64_t{0};  ///< that buffer belongs to
    float* buffer = nullptr;
  };

  float* bufferOf(Port& port);
  const float* input(std::uint32_t port) override;
  float* output(std::uint32_t group, std::uint32_t channel) override;
  void process(std::uint64_t cycle, std::uint32_t frames);
  void addPorts();
  void fail(const char* what);

  const PipeWireLoop& loop_;
  /// Goes after what lives on it.
  const std::shared_ptr<FilterConnection> connection_;
  const std::vector<SinkLayout> sinks_;
  const std::uint32_t slotCount_;
  std::uint32_t slotChannels_ = 0;
  std::vector<std::uint32_t> groupChannels_;
  CorrectionScratch& scratch_;
  std::function<void()> onChange_;

  bool broken_ = false;
  std::vector<std::uint32_t> inputIds_;   ///< global ids by port index, once all are known
  std::vector<std::uint32_t> outputIds_;  ///< likewise, group after group
  std::vector<std::unique_ptr<FilterLink>> outputLinks_;

  // Used by the real-time thread.
  CorrectionPlan plan_;
  std::uint32_t frames_ = 0;
  std::vector<Port> inputs_;
  std::vector<std::vector<Port>> outputs_;
  std::atomic<std::uint64_t> cycles_ = 0;

  struct DestroyFilter {
    void operator()(pw_filter* filter) const { pw_filter_destroy(filter); }
  };
  std::unique_ptr<pw_filter, DestroyFilter> filter_;
  Hook hook_;
};

}  // namespace plemora
