#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "adapters/linux/pipewire/audio_objects.h"
#include "adapters/linux/pipewire/correction_filter.h"
#include "adapters/linux/pipewire/graph_mirror.h"

namespace plemora {

/// Node id of the sink that a stream without links was corrected on until now; 0 for none.
using KnownHome = std::function<std::uint32_t(std::uint32_t stream)>;

/// Which correction has which stream, and on which sink: where the streams of the tapped processes
/// play, and where they are about to when the default sink has changed: links to a filter that are
/// made ahead of the session manager's are ready when it moves the stream. A stream that has never
/// been linked is left alone until it is: ours alone would start it, and what it plays until it is
/// linked would be lost. Made anew at each reconciliation; only the default sink is remembered.
/// With the loop's lock held.
class StreamClaims {
 public:
  /// A stream and a sink that it plays to, or is about to play to.
  using Pair = std::pair<std::uint32_t, std::uint32_t>;
  /// What is to become of such a pair.
  struct Claim {
    std::uint64_t correction = 0;
    bool isExpected = false;        ///< the session manager has not made the links yet
    std::vector<SinkLayout> sinks;  ///< that the filter has to span, in the order of filters
  };

  /// Forgets all claims and looks at the default sink. now: media time in seconds.
  void begin(const AudioObjects& objects, double now);

  /// Claims the streams of the processes that nobody has claimed since begin. Returns the node of
  /// the target sink, 0 while it is not there.
  std::uint32_t add(const GraphMirror& mirror, const AudioObjects& objects,
                    std::uint64_t correction, const std::set<AudioObjectID>& processes,
                    const std::string& targetUid, const KnownHome& knownHome);

  const std::map<Pair, Claim>& all() const { return claims_; }
  const Claim* find(std::uint32_t stream, std::uint32_t home) const;

  bool isClaimed(std::uint32_t stream) const { return homes_.contains(stream); }
  /// Whether a claimed stream is linked to a sink.
  bool isLinked(std::uint32_t stream) const { return homes_.at(stream) != 0; }

  /// Seconds until streams are no longer expected to follow the default sink; 0: they are not now.
  double moveEndsIn(double now) const;

 private:
  std::map<Pair, Claim> claims_;
  std::map<std::uint32_t, std::uint32_t> homes_;  ///< of the claimed streams; 0 = none
  std::uint32_t defaultNode_ = 0;
  std::uint32_t formerDefault_ = 0;  ///< the default before, until the streams have moved
  double defaultChangedAt_ = 0;
};

}  // namespace plemora
