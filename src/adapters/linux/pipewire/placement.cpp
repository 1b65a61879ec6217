#include "adapters/linux/pipewire/placement.h"

#include <algorithm>

namespace plemora {

namespace {

// A server that refuses a link keeps refusing it.
constexpr int maxAttempts = 16;

// A filter that has not been called for this long is at rest, whatever its sink's quantum.
constexpr double restSeconds = 0.3;

}  // namespace

std::vector<DirectLink> directLinks(const GraphMirror& mirror, std::uint32_t stream,
                                    std::uint32_t sink) {
  std::vector<DirectLink> direct;
  const SinkLayout layout = sinkLayout(mirror, sink);
  for (const auto& [id, link] : mirror.links()) {
    const auto port = std::find(layout.ports.begin(), layout.ports.end(), link.inputPort);
    if (link.outputNode == stream && port != layout.ports.end()) {
      const auto channel = static_cast<std::uint32_t>(port - layout.ports.begin());
      direct.push_back({id, link.outputPort, channel, link.wasActive});
    }
  }
  return direct;
}

std::uint32_t homeOf(const GraphMirror& mirror, std::uint32_t stream) {
  std::uint32_t home = 0;
  std::uint64_t newest = 0;
  for (const auto& [id, link] : mirror.links()) {
    const auto sink = mirror.nodes().find(link.inputNode);
    if (link.outputNode == stream && sink != mirror.nodes().end() &&
        sink->second.kind == NodeKind::sink && link.order > newest) {
      newest = link.order;
      home = link.inputNode;
    }
  }
  return home;
}

Placement::Placement(std::uint64_t correction, std::uint32_t stream, std::uint32_t home,
                     FilterSlot slot)
    : correction_(correction),
      stream_(stream),
      home_(home),
      slot_(slot),
      renderSlot_(std::make_unique<CorrectionSlot>()) {
  renderSlot_->port = slot.filter->firstPort(slot.index);
  renderSlot_->group = slot.filter->groupOf(home);
  const auto& ports = slot.filter->sinks().at(renderSlot_->group).ports;
  renderSlot_->channels =
      std::min(static_cast<std::uint32_t>(ports.size()), slot.filter->slotChannels());
}

void Placement::follow(const std::vector<DirectLink>& direct, bool streamRuns) {
  attempts_ += static_cast<int>(
      std::erase_if(links_, [](const InputLink& input) { return input.link->isGone(); }));
  for (const DirectLink& wanted : direct) {
    const bool known = std::any_of(links_.begin(), links_.end(), [&](const InputLink& input) {
      return input.port == wanted.port && input.channel == wanted.channel;
    });
    if (!known && phase_ != Phase::leaving && attempts_ < maxAttempts &&
        wanted.channel < renderSlot_->channels) {
      if (auto link = slot_.filter->linkInput(slot_.index, wanted.channel, stream_, wanted.port)) {
        links_.push_back({wanted.port, wanted.channel, std::move(link)});
      }
    }
  }
  // A link made while the stream rests starts together with ours; one made while it plays counts
  // from the moment that the server has switched it on.
  std::set<std::uint32_t> counted;
  std::uint32_t carrying = 0;
  std::uint32_t waiting = 0;
  for (const DirectLink& link : direct) {
    const std::uint32_t bit = link.channel < 32 ? 1u << link.channel : 0u;
    if (link.wasActive || !streamRuns || countedDirect_.contains(link.id)) {
      counted.insert(link.id);
      carrying |= bit;
    } else {
      waiting |= bit;
    }
  }
  countedDirect_ = std::move(counted);
  renderSlot_->directChannels.store(carrying & ~waiting, std::memory_order_relaxed);
}

bool Placement::isReady(const std::vector<DirectLink>& direct, bool streamRuns) const {
  if (links_.empty() || links_.size() < direct.size()) {
    return false;
  }
  const auto all = [this](auto test) {
    return std::all_of(links_.begin(), links_.end(),
                       [&](const InputLink& input) { return test(*input.link); });
  };
  if (streamRuns) {
    return slot_.filter->outputsActive() && all([](const auto& link) { return link.isActive(); });
  }
  return slot_.filter->outputsPrepared() && all([](const auto& link) { return link.isPrepared(); });
}

void Placement::goLive(bool streamRuns) {
  phase_ = Phase::live;
  if (!streamRuns) {
    renderSlot_->weight.store(1.0f, std::memory_order_relaxed);
  }
  renderSlot_->targetWeight.store(1.0f, std::memory_order_relaxed);
}

void Placement::leave(double now) {
  if (phase_ == Phase::leaving) {
    return;
  }
  phase_ = Phase::leaving;
  leftAt_ = now;
  cyclesWhenLeft_ = slot_.filter->cycles();
  renderSlot_->targetWeight.store(0.0f, std::memory_order_relaxed);
}

bool Placement::hasFaded(bool streamRuns, double now) const {
  if (renderSlot_->weight.load(std::memory_order_relaxed) == 0.0f) {
    return true;
  }
  return !streamRuns || (slot_.filter->cycles() == cyclesWhenLeft_ && now - leftAt_ > restSeconds);
}

}  // namespace plemora
