#pragma once

#include <memory>
#include <string>
#include <vector>

#include "support/child_process.h"
#include "support/samples.h"

namespace plemora::rig {

class PrivateSession;

/// Programs that people play sound with.
enum class PlayerKind { pwPlay, paplay, mpvPipeWire, mpvPulse };

/// The name of the program, as an app list shows it.
std::string programOf(PlayerKind kind);

/// Such a program, playing a file in the session. mpv repeats it for ever.
class Player : public ChildProcess {
 public:
  Player(PrivateSession& session, PlayerKind kind, const std::string& file);
};

/// What a tone player plays and where.
struct ToneOptions {
  std::string name = "tone";  ///< of its program file, which makes it an app of its own
  Signal signal = {};         ///< see Signal; each stream starts at frame 0
  int channels = 2;
  int rate = 48000;
  int streams = 1;          ///< open from the start
  std::string target = {};  ///< the sink asked for; empty: the default
};

/// A small program of the rig that plays generated samples, told by its stdin what to do. Streams
/// are numbered from 0 in the order of opening.
class TonePlayer {
 public:
  TonePlayer(PrivateSession& session, ToneOptions options);

  ChildProcess& process() { return *process_; }
  pid_t pid() const { return process_->pid(); }
  /// Name of the nodes of its streams, but those that were given another.
  const std::string& name() const { return options_.name; }

  /// Opens one more stream and returns its number. Its node is called as the player unless told.
  int open(const std::string& node = {});
  void close(int stream);
  void pause(int stream = 0);
  void resume(int stream = 0);

  /// Waits until the stream is in the state ("streaming", "paused", "unconnected").
  bool waitFor(int stream, const std::string& state, double seconds = 10);
  bool waitUntilStreaming();

 private:
  ToneOptions options_;
  std::unique_ptr<ChildProcess> process_;
  std::vector<std::string> states_;
};

}  // namespace plemora::rig
