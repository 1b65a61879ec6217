#include "adapters/linux/pipewire/correction_engine.h"

#include <algorithm>
#include <utility>

namespace plemora {

namespace {

// A stream without any direct link is on its way from one session manager to the next, or gets
// new ports; after this long it has been unplugged on purpose.
constexpr double lostSeconds = 3.0;

// How often a fade that is under way is looked at.
constexpr double fadeLookSeconds = 0.004;

// More sinks than this are not spanned; streams beyond keep their own path.
constexpr std::size_t maxSinks = 8;

void addSink(std::vector<SinkLayout>& sinks, SinkLayout sink) {
  if (!sink.ports.empty() && sinks.size() < maxSinks &&
      std::find(sinks.begin(), sinks.end(), sink) == sinks.end()) {
    sinks.push_back(std::move(sink));
  }
}

bool contains(const std::vector<SinkLayout>& sinks, std::uint32_t node) {
  return std::any_of(sinks.begin(), sinks.end(),
                     [&](const SinkLayout& sink) { return sink.nodeId == node; });
}

bool isRunning(const GraphMirror& mirror, std::uint32_t node) {
  const auto found = mirror.nodes().find(node);
  return found != mirror.nodes().end() && found->second.isRunning;
}

}  // namespace

CorrectionEngine::CorrectionEngine(const PipeWireLoop& loop, pw_core* core,
                                   std::function<void()> onChange)
    : loop_(loop),
      onChange_(std::move(onChange)),
      filters_(loop, core, onChange_),
      timer_(LoopSource::timer(loop, onChange_)) {}

CorrectionEngine::~CorrectionEngine() {
  // The real-time thread lets go of all slots and blocks before they are freed.
  for (const Placement& placement : placements_) {
    placement.slot().filter->install({});
  }
}

CorrectionEngine::Id CorrectionEngine::start(CorrectionRequest request) {
  const Id id = nextId_++;
  corrections_[id].request = std::move(request);
  onChange_();
  return id;
}

void CorrectionEngine::stop(Id id, double linger, double now) {
  const auto found = corrections_.find(id);
  if (found != corrections_.end() && found->second.stopAt == 0) {
    found->second.stopAt = now + linger;
    onChange_();
  }
}

void CorrectionEngine::reconcile(const GraphMirror& mirror, const AudioObjects& objects,
                                 double now) {
  filters_.update(mirror);
  claimStreams(mirror, objects, now);
  judgePlacements(mirror, now);
  placeNewStreams(mirror, now);
  installPlans();
  changeOver(mirror, now);
  removeFaded(mirror, now);
  std::erase_if(corrections_, [&](const auto& entry) {
    return entry.second.stopAt != 0 && entry.second.stopAt <= now &&
           std::none_of(placements_.begin(), placements_.end(), [&](const Placement& placement) {
             return placement.correction() == entry.first;
           });
  });
  scheduleNext(now);
  loop_.wakeWaiters();
}

// The latest correction that runs has a stream, one that lingers only if no other wants it.
void CorrectionEngine::claimStreams(const GraphMirror& mirror, const AudioObjects& objects,
                                    double now) {
  claims_.clear();
  for (const bool lingering : {false, true}) {
    for (auto entry = corrections_.rbegin(); entry != corrections_.rend(); ++entry) {
      const double stopAt = entry->second.stopAt;
      if ((stopAt != 0) == lingering && (stopAt == 0 || stopAt > now)) {
        span(mirror, objects, entry->first, entry->second);
      }
    }
  }
}

void CorrectionEngine::span(const GraphMirror& mirror, const AudioObjects& objects, Id id,
                            Correction& correction) {
  correction.sinks.clear();
  correction.targetNode = 0;
  if (const SinkObject* target = objects.sinkOfUid(correction.request.targetUid)) {
    SinkLayout layout = sinkLayout(mirror, target->nodeId);
    correction.targetNode = layout.ports.empty() ? 0 : target->nodeId;
    addSink(correction.sinks, std::move(layout));
  }
  for (const AudioObjectID processId : correction.request.processes) {
    const auto process = objects.processes().find(processId);
    if (process == objects.processes().end()) {
      continue;
    }
    for (const std::uint32_t stream : process->second.streams) {
      const std::uint32_t home = homeOf(mirror, stream);
      if (claims_.try_emplace(stream, Claim{id, home, isRunning(mirror, stream)}).second &&
          home != 0) {
        addSink(correction.sinks, sinkLayout(mirror, home));
      }
    }
  }
  std::sort(correction.sinks.begin(), correction.sinks.end(),
            [](const SinkLayout& a, const SinkLayout& b) { return a.nodeId < b.nodeId; });
}

// Whether the placement is just what its stream needs now.
bool CorrectionEngine::isWanted(const Placement& placement) const {
  const auto claim = claims_.find(placement.stream());
  return claim != claims_.end() && claim->second.correction == placement.correction() &&
         claim->second.home == placement.home() && placement.phase() != Placement::Phase::leaving &&
         !placement.slot().filter->isBroken() &&
         placement.slot().filter->sinks() == corrections_.at(placement.correction()).sinks;
}

// Takes leave of placements whose reason has gone. One that is only out of date stays until its
// successor is live.
void CorrectionEngine::judgePlacements(const GraphMirror& mirror, double now) {
  for (Placement& placement : placements_) {
    const auto claim = claims_.find(placement.stream());
    const bool isLinked = claim != claims_.end() && claim->second.home != 0;
    if (placement.slot().filter->isBroken() || claim == claims_.end()) {
      placement.leave(now);
    } else if (isLinked) {
      placement.lostSince = 0;
      if (placement.phase() == Placement::Phase::linking && !isWanted(placement)) {
        placement.leave(now);
      }
    } else if (placement.lostSince == 0) {
      // It plays through our links alone, or not at all, until it is linked again.
      placement.lostSince = now;
    } else if (now - placement.lostSince > lostSeconds) {
      placement.leave(now);
    }
    placement.follow(directLinks(mirror, placement.stream(), placement.home()),
                     isRunning(mirror, placement.stream()));
  }
}

void CorrectionEngine::placeNewStreams(const GraphMirror& mirror, double now) {
  for (const auto& [stream, claim] : claims_) {
    const Correction& correction = corrections_.at(claim.correction);
    const bool isPlaced =
        std::any_of(placements_.begin(), placements_.end(), [&](const Placement& placement) {
          return placement.stream() == stream && isWanted(placement);
        });
    if (isPlaced || !contains(correction.sinks, claim.home)) {
      continue;
    }
    if (const FilterSlot slot = filters_.take(correction.sinks, now)) {
      placements_.emplace_back(claim.correction, stream, claim.home, slot);
      placements_.back().follow(directLinks(mirror, stream, claim.home), claim.isRunning);
      changedFilters_.insert(slot.filter);
    }
  }
}

// What has all its links goes live, and what it replaces leaves, between the same two cycles.
void CorrectionEngine::changeOver(const GraphMirror& mirror, double now) {
  std::vector<std::pair<Placement*, bool>> arriving;
  std::vector<Placement*> replaced;
  for (Placement& placement : placements_) {
    const auto direct = directLinks(mirror, placement.stream(), placement.home());
    const bool runs = isRunning(mirror, placement.stream());
    if (placement.phase() != Placement::Phase::linking || !isWanted(placement) ||
        !placement.isReady(direct, runs)) {
      continue;
    }
    arriving.emplace_back(&placement, runs);
    for (Placement& other : placements_) {
      if (&other != &placement && other.stream() == placement.stream()) {
        replaced.push_back(&other);
      }
    }
  }
  if (arriving.empty()) {
    return;
  }
  loop_.onDataThread([&] {
    for (const auto& [placement, runs] : arriving) {
      placement->goLive(runs);
    }
    for (Placement* placement : replaced) {
      placement->leave(now);
    }
  });
}

void CorrectionEngine::removeFaded(const GraphMirror& mirror, double now) {
  const auto isOver = [&](const Placement& placement) {
    return placement.phase() == Placement::Phase::leaving &&
           placement.hasFaded(
               isRunning(mirror, placement.stream()) && !placement.slot().filter->isBroken(), now);
  };
  std::list<Placement> gone;
  for (auto placement = placements_.begin(); placement != placements_.end();) {
    const auto next = std::next(placement);
    if (isOver(*placement)) {
      changedFilters_.insert(placement->slot().filter);
      gone.splice(gone.end(), placements_, placement);
    }
    placement = next;
  }
  // The real-time thread lets go of the slots before they are freed.
  installPlans();
  for (const Placement& placement : gone) {
    filters_.giveBack(placement.slot());
  }
}

void CorrectionEngine::installPlans() {
  for (CorrectionFilter* filter : changedFilters_) {
    CorrectionPlan plan;
    std::map<Id, std::size_t> indexOf;
    for (const Placement& placement : placements_) {
      if (placement.slot().filter != filter) {
        continue;
      }
      const Correction& correction = corrections_.at(placement.correction());
      const std::uint32_t group = filter->groupOf(correction.targetNode);
      const auto [entry, isNew] = indexOf.try_emplace(placement.correction(), plan.size());
      if (isNew) {
        // Without its target, the app is heard where it plays by itself.
        const bool hasTarget = contains(filter->sinks(), correction.targetNode);
        plan.push_back(
            {&correction.request.block, hasTarget ? group : placement.renderSlot()->group, {}});
      }
      plan[entry->second].slots.push_back(placement.renderSlot());
    }
    filter->install(std::move(plan));
  }
  changedFilters_.clear();
}

void CorrectionEngine::scheduleNext(double now) {
  double next = filters_.sweep(now);
  const auto consider = [&](double seconds) {
    const double wait = std::max(seconds, fadeLookSeconds);
    next = next == 0 ? wait : std::min(next, wait);
  };
  for (const Placement& placement : placements_) {
    if (placement.phase() == Placement::Phase::leaving) {
      consider(fadeLookSeconds);
    } else if (placement.lostSince != 0) {
      consider(placement.lostSince + lostSeconds - now + fadeLookSeconds);
    }
  }
  for (const auto& [id, correction] : corrections_) {
    if (correction.stopAt > now) {
      consider(correction.stopAt - now + fadeLookSeconds);
    }
  }
  if (next > 0) {
    timer_.arm(next);
  } else {
    timer_.disarm();
  }
}

}  // namespace plemora
