#include "adapters/linux/pipewire/correction_filter.h"

#include <algorithm>
#include <string>
#include <utility>

#include "base/log.h"

namespace plemora {

namespace {

constexpr Logger logger("pipewire");

}  // namespace

SinkLayout sinkLayout(const GraphMirror& mirror, std::uint32_t nodeId) {
  std::vector<std::pair<std::uint32_t, std::uint32_t>> found;
  for (const auto& [id, port] : mirror.ports()) {
    if (port.nodeId == nodeId && port.isInput && !port.isMonitor && !port.isControl) {
      found.emplace_back(port.index, id);
    }
  }
  std::sort(found.begin(), found.end());
  SinkLayout layout{nodeId, {}};
  for (const auto& [index, id] : found) {
    layout.ports.push_back(id);
  }
  return layout;
}

CorrectionFilter::CorrectionFilter(const PipeWireLoop& loop,
                                   std::shared_ptr<FilterConnection> connection,
                                   std::vector<SinkLayout> sinks, std::uint32_t slotCount,
                                   CorrectionScratch& scratch, std::function<void()> onChange)
    : loop_(loop),
      connection_(std::move(connection)),
      sinks_(std::move(sinks)),
      slotCount_(slotCount),
      scratch_(scratch),
      onChange_(std::move(onChange)) {
  for (const SinkLayout& sink : sinks_) {
    const auto channels =
        std::min(static_cast<std::uint32_t>(sink.ports.size()), maxCorrectionChannels);
    groupChannels_.push_back(channels);
    slotChannels_ = std::max(slotChannels_, channels);
  }
  // No media class: the session manager would manage the node. No driver wanted: alone it rests.
  filter_.reset(pw_filter_new(
      connection_->core(), "com.quorvane.mixer.correction",
      pw_properties_new(PW_KEY_NODE_NAME, "com.quorvane.mixer.correction", PW_KEY_NODE_DESCRIPTION,
                        "Plemora", PW_KEY_NODE_AUTOCONNECT, "false", PW_KEY_NODE_WANT_DRIVER,
                        "false", PW_KEY_NODE_VIRTUAL, "true", nullptr)));
  if (!filter_) {
    fail("cannot be created");
    return;
  }
  static const pw_filter_events events = [] {
    pw_filter_events made{};
    made.version = PW_VERSION_FILTER_EVENTS;
    made.state_changed = [](void* data, pw_filter_state, pw_filter_state state, const char* error) {
      auto& self = *static_cast<CorrectionFilter*>(data);
      if (state == PW_FILTER_STATE_ERROR) {
        self.fail(error != nullptr ? error : "failed");
      }
      self.onChange_();
    };
    made.process = [](void* data, spa_io_position* position) {
      static_cast<CorrectionFilter*>(data)->process(
          position->clock.nsec, static_cast<std::uint32_t>(position->clock.duration));
    };
    return made;
  }();
  pw_filter_add_listener(filter_.get(), hook_.get(), &events, this);
  addPorts();
  if (pw_filter_connect(filter_.get(), PW_FILTER_FLAG_RT_PROCESS, nullptr, 0) < 0) {
    fail("cannot be connected");
  }
}

CorrectionFilter::~CorrectionFilter() {
  outputLinks_.clear();
  hook_.remove();
  filter_.reset();
}

void CorrectionFilter::fail(const char* what) {
  logger.error(std::string("correction node: ") + what);
  broken_ = true;
}

// All ports are made before the node is connected: later ones would change a list that the
// real-time thread walks.
void CorrectionFilter::addPorts() {
  const auto add = [this](pw_direction direction, const std::string& name) {
    void* port = pw_filter_add_port(filter_.get(), direction, PW_FILTER_PORT_FLAG_MAP_BUFFERS, 0,
                                    pw_properties_new(PW_KEY_FORMAT_DSP, "32 bit float mono audio",
                                                      PW_KEY_PORT_NAME, name.c_str(), nullptr),
                                    nullptr, 0);
    if (port == nullptr) {
      fail("has too many ports");
    }
    return Port{port};
  };
  for (std::uint32_t slot = 0; slot < slotCount_; ++slot) {
    for (std::uint32_t channel = 0; channel < slotChannels_; ++channel) {
      inputs_.push_back(
          add(PW_DIRECTION_INPUT, "in_" + std::to_string(slot) + "_" + std::to_string(channel)));
    }
  }
  for (std::uint32_t group = 0; group < groupChannels_.size(); ++group) {
    auto& ports = outputs_.emplace_back();
    for (std::uint32_t channel = 0; channel < groupChannels_[group]; ++channel) {
      ports.push_back(
          add(PW_DIRECTION_OUTPUT, "out_" + std::to_string(group) + "_" + std::to_string(channel)));
    }
  }
}

std::uint32_t CorrectionFilter::groupOf(std::uint32_t sinkNode) const {
  const auto found = std::find_if(sinks_.begin(), sinks_.end(),
                                  [&](const SinkLayout& sink) { return sink.nodeId == sinkNode; });
  return static_cast<std::uint32_t>(found - sinks_.begin());
}

void CorrectionFilter::update(const GraphMirror& mirror) {
  if (broken_ || isReady()) {
    return;
  }
  const std::uint32_t node = pw_filter_get_node_id(filter_.get());
  if (node == SPA_ID_INVALID || !mirror.nodes().contains(node)) {
    return;
  }
  std::size_t outputCount = 0;
  for (const std::uint32_t channels : groupChannels_) {
    outputCount += channels;
  }
  std::vector<std::uint32_t> ins(inputs_.size(), 0);
  std::vector<std::uint32_t> outs(outputCount, 0);
  for (const auto& [id, port] : mirror.ports()) {
    auto& ids = port.isInput ? ins : outs;
    if (port.nodeId == node && port.index < ids.size()) {
      ids[port.index] = id;
    }
  }
  const auto isKnown = [](const auto& ids) {
    return std::find(ids.begin(), ids.end(), 0u) == ids.end();
  };
  if (!isKnown(ins) || !isKnown(outs)) {
    return;
  }
  inputIds_ = std::move(ins);
  outputIds_ = std::move(outs);
  std::size_t next = 0;
  for (std::size_t group = 0; group < sinks_.size(); ++group) {
    for (std::uint32_t channel = 0; channel < groupChannels_[group]; ++channel) {
      outputLinks_.push_back(std::make_unique<FilterLink>(connection_->core(), node,
                                                          outputIds_[next++], sinks_[group].nodeId,
                                                          sinks_[group].ports[channel], onChange_));
    }
  }
}

bool CorrectionFilter::outputsPrepared() const {
  return isReady() && std::all_of(outputLinks_.begin(), outputLinks_.end(),
                                  [](const auto& link) { return link->isPrepared(); });
}

bool CorrectionFilter::outputsActive() const {
  return isReady() && std::all_of(outputLinks_.begin(), outputLinks_.end(),
                                  [](const auto& link) { return link->isActive(); });
}

std::unique_ptr<FilterLink> CorrectionFilter::linkInput(std::uint32_t slot, std::uint32_t channel,
                                                        std::uint32_t streamNode,
                                                        std::uint32_t streamPort,
                                                        double now) const {
  if (!isReady() || isSpoilt() || channel >= slotChannels_ || !connection_->mayLink(now)) {
    return nullptr;
  }
  return std::make_unique<FilterLink>(connection_->core(), streamNode, streamPort,
                                      pw_filter_get_node_id(filter_.get()),
                                      inputIds_[firstPort(slot) + channel], onChange_);
}

void CorrectionFilter::install(CorrectionPlan plan) {
  loop_.onDataThread([this, &plan] { std::swap(plan_, plan); });
}

float* CorrectionFilter::bufferOf(Port& port) {
  // The library hands out a port's buffer once a cycle.
  const std::uint64_t cycle = cycles_.load(std::memory_order_relaxed);
  if (port.cycle != cycle) {
    port.cycle = cycle;
    port.buffer = static_cast<float*>(pw_filter_get_dsp_buffer(port.data, frames_));
  }
  return port.buffer;
}

const float* CorrectionFilter::input(std::uint32_t port) {
  return bufferOf(inputs_[port]);
}

float* CorrectionFilter::output(std::uint32_t group, std::uint32_t channel) {
  return bufferOf(outputs_[group][channel]);
}

void CorrectionFilter::process(std::uint64_t cycle, std::uint32_t frames) {
  frames_ = frames;
  renderCorrections(plan_, groupChannels_, cycle, frames, *this, scratch_);
  cycles_.fetch_add(1, std::memory_order_relaxed);
}

}  // namespace plemora
