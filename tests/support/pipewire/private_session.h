#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "support/child_process.h"
#include "support/pipewire/graph_view.h"
#include "support/temporary_folder.h"

namespace plemora::rig {

enum class Daemon { bus, pipeWire, sessionManager, pulse };

/// A sound server, session manager, pulse server and session bus of our own in a directory of
/// their own: they touch neither the hardware nor anything of the user's, and nothing of them is
/// left afterwards. All of them run when the constructor returns. Throws std::runtime_error, with
/// the daemons' logs, when one does not come up.
class PrivateSession {
 public:
  PrivateSession();
  ~PrivateSession();
  PrivateSession(const PrivateSession&) = delete;
  PrivateSession& operator=(const PrivateSession&) = delete;

  const std::string& directory() const { return directory_; }
  /// What a program needs to live in this session, for ChildOptions. The constructor also puts it
  /// into our own environment, so that libraries in this process find the session.
  const std::vector<std::string>& environment() const { return environment_; }
  std::string socket() const { return directory_ + "/run/pipewire-0"; }

  /// Waits until the daemon answers. The session manager and the pulse server must be started
  /// again after PipeWire was.
  void start(Daemon daemon);
  /// SIGTERM; waits for the end.
  void stop(Daemon daemon);
  void restart(Daemon daemon);
  /// The session manager goes, by SIGTERM or SIGKILL, and comes back with the sinks of graph(): the
  /// nodes of real cards are its own, so they go and come with it. WirePlumber 0.4 does not link
  /// the streams again that it finds at its start; those that come later it must link.
  void restartSessionManager(bool kill = false);
  ChildProcess& process(Daemon daemon) { return *daemons_.at(daemon); }
  /// The sound server goes and comes back with everything that hangs on it, as systemd does it.
  void restartSoundServer();

  /// Our view of the server; a new one after each start of it. References do not outlive that.
  GraphView& graph() { return *graph_; }

  /// Waits until a node of that name is in the state; false when it does not get there.
  bool waitForState(const std::string& node, const std::string& state, double seconds = 10);
  /// Waits until active links lead from a node of the first name to one of the second.
  bool waitForLink(const std::string& from, const std::string& to, double seconds = 10);

  /// Two stereo sinks "first" (the default) and "second", quantum as given.
  void createSinks(int quantum = 1024);

  /// The files that the session manager keeps, by path, with their content.
  std::map<std::string, std::string> storedState() const;
  /// Everything that the daemons have written so far.
  std::string logs() const;

 private:
  bool answers(Daemon daemon);

  TemporaryFolder folder_;
  std::string directory_ = folder_.path().string();
  std::vector<std::string> environment_;
  std::map<Daemon, std::unique_ptr<ChildProcess>> daemons_;
  std::unique_ptr<GraphView> graph_;
};

}  // namespace plemora::rig
