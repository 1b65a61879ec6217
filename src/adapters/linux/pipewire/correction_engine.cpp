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

bool contains(const std::vector<SinkLayout>& sinks, std::uint32_t node) {
  return std::any_of(sinks.begin(), sinks.end(),
                     [&](const SinkLayout& sink) { return sink.nodeId == node; });
}

std::uint64_t serialOf(const GraphMirror& mirror, std::uint32_t node) {
  const auto found = mirror.nodes().find(node);
  return found == mirror.nodes().end() ? 0 : found->second.serial;
}

bool isRunning(const GraphMirror& mirror, std::uint32_t node) {
  const auto found = mirror.nodes().find(node);
  return found != mirror.nodes().end() && found->second.isRunning;
}

}  // namespace

CorrectionEngine::CorrectionEngine(const PipeWireLoop& loop, std::function<void()> onChange)
    : loop_(loop),
      onChange_(std::move(onChange)),
      filters_(loop, onChange_),
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
  placeStreams(mirror, now);
  installPlans();
  changeOver(mirror, now);
  removeFaded(mirror, now);
  std::erase_if(corrections_, [&](const auto& entry) {
    return entry.second.stopAt != 0 && entry.second.stopAt <= now &&
           std::none_of(placements_.begin(), placements_.end(), [&](const Placement& placement) {
             return placement.correction() == entry.first;
           });
  });
  scheduleNext(mirror, now);
  loop_.wakeWaiters();
}

// The latest correction that runs has a stream, one that lingers only if no other wants it.
void CorrectionEngine::claimStreams(const GraphMirror& mirror, const AudioObjects& objects,
                                    double now) {
  const auto knownHome = [&](std::uint32_t stream) {
    const auto known =
        std::find_if(placements_.begin(), placements_.end(), [&](const Placement& placement) {
          return placement.stream() == stream && placement.phase() == Placement::Phase::live &&
                 mirror.nodes().contains(placement.home());
        });
    return known == placements_.end() ? 0 : known->home();
  };
  claims_.begin(objects, now);
  for (const bool lingering : {false, true}) {
    for (auto entry = corrections_.rbegin(); entry != corrections_.rend(); ++entry) {
      Correction& correction = entry->second;
      const double stopAt = correction.stopAt;
      if ((stopAt != 0) == lingering && (stopAt == 0 || stopAt > now)) {
        correction.targetNode =
            claims_.add(mirror, objects, entry->first, correction.request.processes,
                        correction.request.targetUid, knownHome);
      }
    }
  }
}

// All streams to the same sinks belong on one filter: each filter wakes the server and us once more
// in every cycle, and an app's gain ramps in the first one that renders it and would step in
// others. What is still being linked is heard where it is first.
bool CorrectionEngine::belongsElsewhere(const Placement& placement, double now) const {
  const CorrectionFilter& filter = *placement.slot().filter;
  return placement.phase() == Placement::Phase::live &&
         std::any_of(placements_.begin(), placements_.end(), [&](const Placement& other) {
           const CorrectionFilter& larger = *other.slot().filter;
           return other.phase() != Placement::Phase::leaving &&
                  larger.slotCount() > filter.slotCount() && larger.sinks() == filter.sinks() &&
                  filters_.hasRoom(larger, now);
         });
}

// Whether the placement is just what its stream needs, or will need.
bool CorrectionEngine::isWanted(const Placement& placement, double now) const {
  const auto* claim = claims_.find(placement.stream(), placement.home());
  const CorrectionFilter& filter = *placement.slot().filter;
  return claim != nullptr && claim->correction == placement.correction() &&
         placement.phase() != Placement::Phase::leaving && !filter.isBroken() &&
         !filter.isSpoilt() && filter.sinks() == claim->sinks && !belongsElsewhere(placement, now);
}

void CorrectionEngine::follow(const GraphMirror& mirror, Placement& placement, double now) {
  const auto direct = directLinks(mirror, placement.stream(), placement.home());
  // A stream that has lost its links keeps ours as they are.
  const bool isAhead = direct.empty() && placement.phase() == Placement::Phase::linking;
  const auto wanted =
      isAhead ? expectedLinks(mirror, placement.stream(), placement.home()) : direct;
  placement.follow(wanted, direct, isRunning(mirror, placement.stream()), now);
}

// A place that is not heard yet serves the correction that has the stream now as well as the one
// that it was made for.
void CorrectionEngine::adopt(Placement& placement) {
  const auto* claim = claims_.find(placement.stream(), placement.home());
  if (claim != nullptr && placement.phase() == Placement::Phase::linking &&
      claim->correction != placement.correction()) {
    placement.setCorrection(claim->correction);
    changedFilters_.insert(placement.slot().filter);
  }
}

// Takes leave of placements whose reason has gone. One that is heard and only out of date stays
// until its successor is.
void CorrectionEngine::judgePlacements(const GraphMirror& mirror, double now) {
  for (Placement& placement : placements_) {
    adopt(placement);
    if (placement.slot().filter->isBroken() || !claims_.isClaimed(placement.stream())) {
      placement.leave(now);
    } else if (placement.serial() != serialOf(mirror, placement.stream())) {
      // Another stream has got its id. Nothing comes of the old one that could fade.
      placement.leave(now, true);
    } else if (placement.phase() == Placement::Phase::linking && !isWanted(placement, now)) {
      placement.leave(now);
    } else if (claims_.isLinked(placement.stream())) {
      placement.lostSince = 0;
    } else if (placement.lostSince == 0) {
      // It plays through our links alone, or not at all, until it is linked again.
      placement.lostSince = now;
    } else if (now - placement.lostSince > lostSeconds &&
               placement.phase() == Placement::Phase::live) {
      placement.leave(now);
    }
    follow(mirror, placement, now);
  }
}

void CorrectionEngine::placeStreams(const GraphMirror& mirror, double now) {
  for (const auto& [pair, claim] : claims_.all()) {
    const auto [stream, home] = pair;
    const bool isPlaced = std::any_of(
        placements_.begin(), placements_.end(), [&, s = stream, h = home](const auto& placement) {
          return placement.stream() == s && placement.home() == h && isWanted(placement, now);
        });
    const bool isAhead = claim.isExpected && expectedLinks(mirror, stream, home).empty();
    if (isPlaced || isAhead || !contains(claim.sinks, home)) {
      continue;
    }
    if (const FilterSlot slot = filters_.take(claim.sinks, now)) {
      placements_.emplace_back(claim.correction, stream, serialOf(mirror, stream), home, slot);
      follow(mirror, placements_.back(), now);
      changedFilters_.insert(slot.filter);
    }
  }
}

// What has all its links goes live together with the direct path, and what it replaces leaves,
// between the same two cycles.
void CorrectionEngine::changeOver(const GraphMirror& mirror, double now) {
  std::vector<std::pair<Placement*, bool>> arriving;
  std::vector<std::pair<Placement*, bool>> replaced;
  for (Placement& placement : placements_) {
    if (placement.phase() != Placement::Phase::linking || !isWanted(placement, now)) {
      continue;
    }
    const bool runs = isRunning(mirror, placement.stream());
    std::vector<Placement*> others;
    for (Placement& other : placements_) {
      if (other.stream() == placement.stream() && other.phase() == Placement::Phase::live) {
        others.push_back(&other);
      }
    }
    // The stream has moved away from where its predecessor corrects it: nothing holds this one back
    // until the two can change places between cycles.
    if (others.size() == 1 && !others.front()->isDirect() &&
        others.front()->home() != placement.home() && placement.isDirect() &&
        !placement.hasStarted()) {
      placement.startWhenFed(*others.front());
      continue;
    }
    if (!placement.isReady(runs, !others.empty())) {
      continue;
    }
    // From one filter to another it changes in the midst of a cycle, whichever of them runs first.
    if (runs && others.size() == 1 && !placement.hasStarted() && placement.isDirect() &&
        placement.isLike(*others.front())) {
      placement.startWhenFed(*others.front());
      continue;
    }
    if (claims_.find(placement.stream(), placement.home())->isExpected || !placement.isDirect()) {
      placement.wasAhead = true;
      continue;
    }
    arriving.emplace_back(&placement, placement.isBeforeFirstSample(runs) || placement.wasAhead ||
                                          placement.hasStarted());
    for (Placement* other : others) {
      replaced.emplace_back(other, placement.wasAhead);
    }
  }
  if (arriving.empty()) {
    return;
  }
  loop_.onDataThread([&] {
    for (const auto& [placement, atOnce] : arriving) {
      placement->goLive(atOnce);
    }
    for (const auto& [placement, atOnce] : replaced) {
      placement->leave(now, atOnce);
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
  for (const Placement& placement : gone) {
    for (Placement& other : placements_) {
      other.forget(placement);
    }
  }
  // The real-time thread lets go of the slots before they are freed.
  installPlans();
  for (const Placement& placement : gone) {
    filters_.giveBack(placement.slot(), now);
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

void CorrectionEngine::scheduleNext(const GraphMirror& mirror, double now) {
  double next = filters_.sweep(now);
  const auto consider = [&](double seconds) {
    const double wait = std::max(seconds, fadeLookSeconds);
    next = next == 0 ? wait : std::min(next, wait);
  };
  for (const Placement& placement : placements_) {
    if (placement.phase() == Placement::Phase::leaving) {
      consider(fadeLookSeconds);
    } else if (const double look = placement.nextLook(isRunning(mirror, placement.stream()));
               look > 0) {
      consider(look);
    } else if (placement.lostSince != 0 && placement.phase() == Placement::Phase::live) {
      consider(placement.lostSince + lostSeconds - now + fadeLookSeconds);
    }
  }
  if (const double left = claims_.moveEndsIn(now); left > 0) {
    consider(left + fadeLookSeconds);
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
