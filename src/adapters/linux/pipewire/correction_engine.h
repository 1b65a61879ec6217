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
  CorrectionEngine(const PipeWireLoop& loop, pw_core* core, std::function<void()> onChange);
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
  /// A stream and a sink that it plays to, or is about to play to.
  using Pair = std::pair<std::uint32_t, std::uint32_t>;
  /// What is to become of such a pair.
  struct Claim {
    Id correction = 0;
    bool isExpected = false;        ///< the session manager has not made the links yet
    std::vector<SinkLayout> sinks;  ///< that the filter has to span
  };

  void noteDefault(const AudioObjects& objects, double now);
  void claimStreams(const GraphMirror& mirror, const AudioObjects& objects, double now);
  void span(const GraphMirror& mirror, const AudioObjects& objects, Id id, Correction& correction);
  std::uint32_t expectedHome(const GraphMirror& mirror, std::uint32_t stream) const;
  const Claim* claimOf(const Placement& placement) const;
  bool isWanted(const Placement& placement) const;
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
  std::map<Pair, Claim> claims_;                  ///< of this reconciliation
  std::map<std::uint32_t, std::uint32_t> homes_;  ///< of the claimed streams; 0 = none
  std::uint32_t defaultNode_ = 0;
  std::uint32_t formerDefault_ = 0;  ///< the default before, until the streams have moved
  double defaultChangedAt_ = 0;
  std::set<CorrectionFilter*> changedFilters_;
};

}  // namespace plemora
