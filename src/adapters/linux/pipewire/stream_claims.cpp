#include "adapters/linux/pipewire/stream_claims.h"

#include <algorithm>

#include "adapters/linux/pipewire/placement.h"

namespace plemora {

namespace {

// How long the session manager may take to move streams to a new default sink.
constexpr double moveSeconds = 1.0;

// More sinks than this are not spanned; streams beyond keep their own path.
constexpr std::size_t maxSinks = 8;

// A set of sinks in the order that filters keep them in.
class SinkSet {
 public:
  void add(const SinkLayout& sink) {
    const auto place = std::lower_bound(
        sinks.begin(), sinks.end(), sink,
        [](const SinkLayout& a, const SinkLayout& b) { return a.nodeId < b.nodeId; });
    const bool isThere = place != sinks.end() && place->nodeId == sink.nodeId;
    if (!sink.ports.empty() && !isThere && sinks.size() < maxSinks) {
      sinks.insert(place, sink);
    }
  }
  std::vector<SinkLayout> sinks;
};

}  // namespace

void StreamClaims::begin(const AudioObjects& objects, double now) {
  claims_.clear();
  homes_.clear();
  const auto sink = objects.sinks().find(objects.defaultSink());
  const std::uint32_t node = sink == objects.sinks().end() ? 0 : sink->second.nodeId;
  if (node != 0 && node != defaultNode_) {
    formerDefault_ = std::exchange(defaultNode_, node);
    defaultChangedAt_ = now;
  }
  if (now - defaultChangedAt_ > moveSeconds) {
    formerDefault_ = 0;
  }
}

double StreamClaims::moveEndsIn(double now) const {
  return formerDefault_ == 0 ? 0 : defaultChangedAt_ + moveSeconds - now;
}

std::uint32_t StreamClaims::add(const GraphMirror& mirror, const AudioObjects& objects,
                                std::uint64_t correction, const std::set<AudioObjectID>& processes,
                                const std::string& targetUid, const KnownHome& knownHome) {
  std::vector<std::uint32_t> streams;
  for (const AudioObjectID processId : processes) {
    const auto process = objects.processes().find(processId);
    if (process != objects.processes().end()) {
      for (const std::uint32_t stream : process->second.streams) {
        if (homes_.try_emplace(stream, homeOf(mirror, stream)).second) {
          streams.push_back(stream);
        }
      }
    }
  }
  SinkLayout target;
  if (const SinkObject* sink = objects.sinkOfUid(targetUid)) {
    target = sinkLayout(mirror, sink->nodeId);
  }
  // As it is, and as it will be once the streams that follow the default have followed it.
  SinkSet now;
  SinkSet soon;
  now.add(target);
  soon.add(target);
  const auto moves = [this](std::uint32_t home) { return home != 0 && home == formerDefault_; };
  for (const std::uint32_t stream : streams) {
    if (const std::uint32_t home = homes_.at(stream); home != 0) {
      now.add(sinkLayout(mirror, home));
      soon.add(sinkLayout(mirror, moves(home) ? defaultNode_ : home));
    }
  }
  for (const std::uint32_t stream : streams) {
    const std::uint32_t home = homes_.at(stream);
    if (home != 0) {
      claims_[{stream, home}] = {correction, false, now.sinks};
      if (moves(home)) {
        claims_[{stream, defaultNode_}] = {correction, true, soon.sinks};
      }
      continue;
    }
    if (const std::uint32_t known = knownHome(stream); known != 0) {
      SinkSet sinks = now;
      sinks.add(sinkLayout(mirror, known));
      claims_[{stream, known}] = {correction, true, std::move(sinks.sinks)};
    }
  }
  return target.ports.empty() ? 0 : target.nodeId;
}

const StreamClaims::Claim* StreamClaims::find(std::uint32_t stream, std::uint32_t home) const {
  const auto claim = claims_.find({stream, home});
  return claim == claims_.end() ? nullptr : &claim->second;
}

}  // namespace plemora
