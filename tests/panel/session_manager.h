#pragma once

#include <memory>
#include <string>

namespace plemora::rig {

/// A session manager of X11 desktops as programs see it (XSMP), with one client. It lives on a
/// thread of its own.
class SessionManager {
 public:
  SessionManager();
  ~SessionManager();
  SessionManager(const SessionManager&) = delete;
  SessionManager& operator=(const SessionManager&) = delete;

  /// "SESSION_MANAGER=..." for the environment of its client.
  std::string variable() const;
  /// Whether the client has introduced itself and saved what it had, before long.
  bool hasClient();
  /// Ends the session: the client is to save what it has and, once it has done so, to end.
  void logOut();
  /// Whether the client was told to end, after it had saved what it had.
  bool hasToldToEnd();
  /// Whether the client wants to be started again with the next session.
  bool isToBeRestarted();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace plemora::rig
