#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "support/samples.h"

namespace plemora::rig {

class PrivateSession;

/// What was recorded: the same number of samples for each channel.
struct Recording {
  std::vector<Channel> channels;
  std::size_t frames = 0;
  std::uint64_t position = 0;  ///< of the first frame, on the clock of the driver of the graph
  int gaps = 0;  ///< cycles that the graph's clock skipped or gave twice: a disturbed measurement

  const Channel& operator[](std::size_t channel) const { return channels.at(channel); }
};

/// Records what a sink plays, sample by sample as its mixer made it, from inside the same graph
/// cycle; or what a player's stream puts out, when it is given the name of that. What is recorded
/// runs for it. Several may record one sink.
class SinkRecorder {
 public:
  /// Waits until the first cycle has been recorded. Throws std::runtime_error when none comes.
  SinkRecorder(PrivateSession& session, const std::string& sink);
  ~SinkRecorder();
  SinkRecorder(const SinkRecorder&) = delete;
  SinkRecorder& operator=(const SinkRecorder&) = delete;

  /// Links again to the sink of that name, after it has come back.
  void attach();

  /// Frames recorded so far.
  std::size_t frames() const;
  /// The next recording starts here. All recordings of this object together last at most four
  /// minutes.
  void clear();
  /// Waits for that many frames more than now; false when they do not come in three times the
  /// time that they take plus 2 s.
  bool record(std::size_t more);
  /// Everything recorded since the last clear.
  Recording take();
  /// clear, record, take. Throws std::runtime_error when the frames do not come.
  Recording next(std::size_t frames);
  /// Recordings of that many frames, one after the other, until one is as it should be: that one,
  /// or the last. A busy machine makes clients of the sound server miss cycles, which says nothing
  /// of what the others hold; what is wrong for good is wrong in each.
  Recording nextThat(std::size_t frames, const std::function<bool(const Recording&)>& isRight);
  unsigned rate() const;

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace plemora::rig
