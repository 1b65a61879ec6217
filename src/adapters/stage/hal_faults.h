#pragma once

#include <functional>
#include <map>
#include <mutex>
#include <utility>
#include <vector>

#include "platform/audio_constants.h"

namespace plemora {

/// The operations of AudioProperties and AudioGraph.
enum class HalCall {
  dataSize,
  data,
  string,
  setData,
  isSettable,
  addListener,
  removeListener,
  createTap,
  destroyTap,
  createAggregate,
  destroyAggregate,
  createIOProc,
  destroyIOProc,
  start,
  stop,
};

/// A failure to come.
struct HalFault {
  HalCall call{};
  AudioObjectPropertySelector selector = 0;  ///< property calls only; 0 = any
  AudioObjectID object = 0;                  ///< the object called; 0 = any
  /// What the call returns instead of doing its work. noErr: it does its work.
  OSStatus status = kAudioHardwareUnspecifiedError;
  int times = 1;  ///< how many calls fail; negative = all
  /// The call succeeds but stores nothing: no bytes, no text, no id.
  bool yieldsNothing = false;
  /// Runs at the beginning of the call, on its thread, and may change the simulated HAL: so do
  /// objects vanish during a call.
  std::function<void()> before{};
};

/// Decides which calls of a simulated HAL fail, and counts them. Any thread.
class HalFaults {
 public:
  void add(HalFault fault);
  /// Forgets the faults to come; the counts stay.
  void clear();

  /// Calls made so far, of one selector or (0) of all.
  int calls(HalCall call, AudioObjectPropertySelector selector = 0) const;
  int allCalls() const;
  /// The calls of AudioGraph, failed ones too, in order.
  std::vector<HalCall> journal() const;
  void clearCounts();

 private:
  friend class SimulatedHal;

  struct Verdict {
    OSStatus status = noErr;
    bool yieldsNothing = false;
  };
  // Counts a call that begins, and says how it shall end. Called without the HAL's lock.
  Verdict enter(HalCall call, AudioObjectID object, AudioObjectPropertySelector selector = 0);

  mutable std::mutex mutex_;
  std::vector<HalFault> faults_;
  std::map<std::pair<HalCall, AudioObjectPropertySelector>, int> counts_;
  std::vector<HalCall> journal_;
};

}  // namespace plemora
