#pragma once

#include <map>
#include <memory>

#include "platform/audio_graph.h"

namespace plemora {

/// An IO proc of an aggregate device. Its address is its id.
struct IOProcRecord {
  AudioIOBlock block;
  std::uint64_t connection = 0;  ///< on which it was started; 0 = it does not run
  std::uint64_t correction = 0;
};

struct AggregateRecord {
  AggregateDescription description;
  std::map<AudioDeviceIOProcID, std::unique_ptr<IOProcRecord>> procs;
};

/// The taps and aggregate devices that this program has made. They exist here alone: the server
/// knows nothing of them. With the loop's lock held.
struct PrivateObjects {
  std::map<AudioObjectID, TapDescription> taps;
  std::map<AudioObjectID, AggregateRecord> aggregates;
};

}  // namespace plemora
