#pragma once

#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "adapters/linux/pipewire/audio_objects.h"
#include "adapters/linux/pipewire/filter_pool.h"
#include "adapters/linux/pipewire/placement.h"
#include "adapters/linux/pipewire/stream_claims.h"

namespace plemora {

/// What one started IO proc asks for.
struct CorrectionRequest {
  std::set<AudioObjectID> processes;
  std::string targetUid;  ///< sink that the app is to be heard on
  AudioIOBlock block;     ///< kept until the correction has faded out
};

/// Keeps every stream of the tapped processes corrected: watches streams come, go and move, puts
/// each on a filter that spans the sinks it is concerned with, and fades it in and out across one
/// buffer. Where two corrections want the same process, the later one has it. Lives as long as one
/// connection. With the loop's lock held.
class CorrectionEngine {
 public:
  using Id = std::uint64_t;

  /// onChange asks for a call of reconcile soon.
  CorrectionEngine(const PipeWireLoop& loop, std::function<void()> onChange);
  ~CorrectionEngine();

  Id start(CorrectionRequest request);

  /// Fades out, after lingering for that many seconds unless a later correction takes over first.
  void stop(Id id, double linger, double now);
  bool isGone(Id id) const { return !corrections_.contains(id); }

  /// Brings filters, links and weights in line with the graph. now: media time in seconds.
  void reconcile(const GraphMirror& mirror, const AudioObjects& objects, double now);

 private:
  struct Correction {
    CorrectionRequest request;
    double stopAt = 0;             ///< media time from which it is unwanted; 0 = runs
    std::uint32_t targetNode = 0;  ///< 0 while the target is not there
  };

  void claimStreams(const GraphMirror& mirror, const AudioObjects& objects, double now);
  bool isWanted(const Placement& placement, double now) const;
  bool belongsElsewhere(const Placement& placement, double now) const;
  void adopt(Placement& placement);
  void follow(const GraphMirror& mirror, Placement& placement, double now);
  void judgePlacements(const GraphMirror& mirror, double now);
  void placeStreams(const GraphMirror& mirror, double now);
  void changeOver(const GraphMirror& mirror, double now);
  void removeFaded(const GraphMirror& mirror, double now);
  void installPlans();
  void scheduleNext(const GraphMirror& mirror, double now);

  const PipeWireLoop& loop_;
  std::function<void()> onChange_;
  FilterPool filters_;
  LoopSource timer_;
  std::map<Id, Correction> corrections_;
  Id nextId_ = 1;
  std::list<Placement> placements_;
  StreamClaims claims_;  ///< of this reconciliation
  std::set<CorrectionFilter*> changedFilters_;
};

}  // namespace plemora
