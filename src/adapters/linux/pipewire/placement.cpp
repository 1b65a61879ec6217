#include "adapters/linux/pipewire/placement.h"

#include <algorithm>

namespace plemora {

namespace {

// The waiting times below double with each failed attempt, this often: a busy server is not helped
// by more requests.
constexpr int longestBackoff = 5;

// An input that has been empty for this many cycles while its stream plays has lost its buffers.
constexpr std::uint32_t lostCycles = 30;

// How often a stream that plays is looked at for that.
constexpr double healthySeconds = 1.0;

// From this many failures on, an input is looked at less often.
constexpr int manyFailures = 4;
constexpr double lookSeconds = 0.01;
constexpr double seldomLookSeconds = 0.25;

// A link that is on, in a filter that has run this often since, would have delivered long ago. Now
// and then the library loses the buffers of a link that is made while its stream starts; a new link
// gets new ones.
constexpr double deafSeconds = 0.03;
constexpr std::uint64_t deafCycles = 3;

// A request for a link to a stream that plays is answered within moments. Under load the server
// now and then loses one without a word.
constexpr double answerSeconds = 0.5;

// A refused link may be possible a moment later: its ports may have been on their way.
constexpr double retrySeconds = 0.005;

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
      direct.push_back({id, link.outputPort, channel, link.wasActive, link.since});
    }
  }
  return direct;
}

std::vector<DirectLink> expectedLinks(const GraphMirror& mirror, std::uint32_t stream,
                                      std::uint32_t sink) {
  std::vector<DirectLink> expected;
  const SinkLayout layout = sinkLayout(mirror, sink);
  for (std::uint32_t channel = 0; channel < layout.ports.size(); ++channel) {
    const std::string& name = mirror.ports().at(layout.ports[channel]).channel;
    for (const auto& [id, port] : mirror.ports()) {
      if (port.nodeId == stream && !port.isInput && !port.isControl && !name.empty() &&
          port.channel == name) {
        expected.push_back({0, id, channel, false, 0});
      }
    }
  }
  return expected;
}

std::uint32_t homeOf(const GraphMirror& mirror, std::uint32_t stream) {
  std::uint32_t home = 0;
  std::uint64_t newest = 0;
  for (const auto& [id, link] : mirror.links()) {
    const auto sink = mirror.nodes().find(link.inputNode);
    if (link.outputNode == stream && sink != mirror.nodes().end() &&
        sink->second.kind == NodeKind::sink && link.serial > newest) {
      newest = link.serial;
      home = link.inputNode;
    }
  }
  return home;
}

Placement::Placement(std::uint64_t correction, std::uint32_t stream, std::uint64_t serial,
                     std::uint32_t home, FilterSlot slot)
    : correction_(correction),
      stream_(stream),
      serial_(serial),
      home_(home),
      slot_(slot),
      renderSlot_(std::make_unique<CorrectionSlot>()) {
  renderSlot_->port = slot.filter->firstPort(slot.index);
  renderSlot_->group = slot.filter->groupOf(home);
  const auto& ports = slot.filter->sinks().at(renderSlot_->group).ports;
  renderSlot_->channels =
      std::min(static_cast<std::uint32_t>(ports.size()), slot.filter->slotChannels());
}

void Placement::follow(const std::vector<DirectLink>& wanted, const std::vector<DirectLink>& direct,
                       bool streamRuns, double now) {
  sawRest_ = sawRest_ || !streamRuns;
  if (streamRuns && sawRest_ && !sawStart_) {
    sawStart_ = true;
    cyclesAtStart_ = slot_.filter->cycles();
  }
  if (phase_ != Phase::leaving) {
    const auto isWanted = [&](const InputLink& input) {
      return wanted.empty() || std::any_of(wanted.begin(), wanted.end(), [&](const auto& link) {
               return input.port == link.port && input.channel == link.channel;
             });
    };
    std::erase_if(links_, [&](const InputLink& input) { return !isWanted(input); });
    if (streamRuns && phase_ == Phase::live &&
        renderSlot_->silentCycles.load(std::memory_order_relaxed) > lostCycles) {
      // All are to be heard anew; those that are not get a new link.
      renderSlot_->silentCycles.store(0, std::memory_order_relaxed);
      renderSlot_->seenChannels.store(0, std::memory_order_relaxed);
      for (InputLink& input : links_) {
        input.activeSince = 0;
      }
    }
    const auto failed = std::erase_if(links_, [&](InputLink& input) {
      return input.link->isGone() || (streamRuns && isDeaf(input, now));
    });
    if (failed > 0) {
      ++failures_;
      retryAt_ = now + retrySeconds * backoff();
    }
    for (const DirectLink& link : wanted) {
      const bool known = std::any_of(links_.begin(), links_.end(), [&](const InputLink& input) {
        return input.port == link.port && input.channel == link.channel;
      });
      if (known || now < retryAt_ || link.channel >= renderSlot_->channels) {
        continue;
      }
      if (auto made = slot_.filter->linkInput(slot_.index, link.channel, stream_, link.port, now)) {
        renderSlot_->seenChannels.fetch_and(~(1u << link.channel), std::memory_order_relaxed);
        links_.push_back({link.port, link.channel, std::move(made), now});
      }
    }
    wanted_ = wanted.empty() ? links_.size() : wanted.size();
    std::uint32_t linked = 0;
    for (const InputLink& input : links_) {
      linked |= 1u << input.channel;
    }
    renderSlot_->linkedChannels.store(linked, std::memory_order_relaxed);
    if (isReady(streamRuns, true)) {
      failures_ = 0;
    }
  }
  // A link made while the stream rests starts together with ours; one made while it plays counts
  // from the moment that the server has switched it on.
  std::set<std::uint32_t> counted;
  std::uint32_t carrying = 0;
  std::uint32_t waiting = 0;
  for (const DirectLink& link : direct) {
    const std::uint32_t bit = link.channel < 32 ? 1u << link.channel : 0u;
    if (link.wasActive || !streamRuns || countedDirect_.contains(link.id) ||
        now - link.since > answerSeconds) {
      counted.insert(link.id);
      carrying |= bit;
    } else {
      waiting |= bit;
    }
  }
  countedDirect_ = std::move(counted);
  isDirect_ = carrying != 0 && waiting == 0;
  awaitsDirect_ = waiting != 0;
  renderSlot_->directChannels.store(carrying & ~waiting, std::memory_order_relaxed);
}

bool Placement::hasHeard(const InputLink& input) const {
  return (renderSlot_->seenChannels.load(std::memory_order_relaxed) >> input.channel & 1u) != 0;
}

bool Placement::isDeaf(InputLink& input, double now) {
  if (!input.link->isActive()) {
    input.activeSince = 0;
    return now - input.madeAt > answerSeconds * backoff();
  }
  if (hasHeard(input)) {
    return false;
  }
  if (input.activeSince == 0) {
    input.activeSince = now;
    input.cyclesAtStart = slot_.filter->cycles();
  }
  return now - input.activeSince > deafSeconds * backoff() &&
         slot_.filter->cycles() - input.cyclesAtStart >= deafCycles;
}

double Placement::backoff() const {
  return 1 << std::min(failures_, longestBackoff);
}

double Placement::nextLook(bool streamRuns) const {
  const bool isWaiting =
      phase_ != Phase::leaving &&
      (links_.size() < wanted_ || awaitsDirect_ ||
       (streamRuns && std::any_of(links_.begin(), links_.end(), [this](const InputLink& input) {
          return !input.link->isActive() || !hasHeard(input);
        })));
  if (isArmed_ && phase_ == Phase::linking) {
    return lookSeconds;
  }
  if (!isWaiting) {
    return streamRuns && phase_ == Phase::live ? healthySeconds : 0;
  }
  return failures_ < manyFailures ? lookSeconds : seldomLookSeconds;
}

bool Placement::isReady(bool streamRuns, bool takesOver) const {
  const bool allPrepared = !links_.empty() && links_.size() >= wanted_ &&
                           std::all_of(links_.begin(), links_.end(), [](const InputLink& input) {
                             return input.link->isPrepared();
                           });
  if (!allPrepared || !streamRuns) {
    return allPrepared && slot_.filter->outputsPrepared();
  }
  const std::uint32_t unseen = renderSlot_->linkedChannels.load(std::memory_order_relaxed) &
                               ~renderSlot_->seenChannels.load(std::memory_order_relaxed);
  return slot_.filter->outputsActive() && (!takesOver || unseen == 0);
}

bool Placement::isBeforeFirstSample(bool streamRuns) const {
  return !streamRuns || (sawStart_ && slot_.filter->cycles() == cyclesAtStart_);
}

void Placement::goLive(bool atOnce) {
  phase_ = Phase::live;
  if (atOnce) {
    renderSlot_->weight.store(1.0f, std::memory_order_relaxed);
  }
  renderSlot_->targetWeight.store(1.0f, std::memory_order_relaxed);
}

void Placement::startWhenFed(const Placement& predecessor) {
  if (!isArmed_) {
    isArmed_ = true;
    renderSlot_->predecessor.store(predecessor.renderSlot(), std::memory_order_relaxed);
    renderSlot_->isLikePredecessor.store(isLike(predecessor), std::memory_order_relaxed);
    renderSlot_->startsWhenFed.store(true, std::memory_order_relaxed);
  }
}

bool Placement::isLike(const Placement& predecessor) const {
  return correction_ == predecessor.correction_ && home_ == predecessor.home_ &&
         slot_.filter->sinks() == predecessor.slot_.filter->sinks() &&
         predecessor.renderSlot_->weight.load(std::memory_order_relaxed) == 1.0f;
}

void Placement::forget(const Placement& predecessor) {
  auto* slot = predecessor.renderSlot();
  renderSlot_->predecessor.compare_exchange_strong(slot, nullptr, std::memory_order_relaxed);
}

void Placement::leave(double now, bool atOnce) {
  if (phase_ == Phase::leaving) {
    return;
  }
  phase_ = Phase::leaving;
  leftAt_ = now;
  renderSlot_->startsWhenFed.store(false, std::memory_order_relaxed);
  cyclesWhenLeft_ = slot_.filter->cycles();
  renderSlot_->targetWeight.store(0.0f, std::memory_order_relaxed);
  if (atOnce) {
    renderSlot_->weight.store(0.0f, std::memory_order_relaxed);
  }
}

bool Placement::hasFaded(bool streamRuns, double now) const {
  if (renderSlot_->weight.load(std::memory_order_relaxed) == 0.0f) {
    return true;
  }
  return !streamRuns || (slot_.filter->cycles() == cyclesWhenLeft_ && now - leftAt_ > restSeconds);
}

}  // namespace plemora
