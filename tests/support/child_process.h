#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

namespace plemora::rig {

/// How a child process is started.
struct ChildOptions {
  std::vector<std::string> arguments;  ///< the program (looked up in PATH) first
  std::vector<std::string> environment =
      {};                    ///< "KEY=VALUE" on top of ours; "KEY" alone removes it
  std::string logFile = {};  ///< takes stderr, and stdout unless readable; empty: ours
  bool readable = false;     ///< stdin and stdout are pipes of this object
};

/// A child in a process group of its own that dies with the thread that started it and, whole
/// group, with this object. Throws std::runtime_error when it cannot be started.
class ChildProcess {
 public:
  explicit ChildProcess(const ChildOptions& options);
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  pid_t pid() const { return pid_; }
  bool running();

  /// To the child alone; nothing once it has ended.
  void signal(int number);

  /// Waits for the end; the exit status, or 128 + signal. None when it still runs after that time.
  std::optional<int> wait(double seconds);

  /// SIGTERM, then SIGKILL to the whole group after a second; reaps.
  void stop();
  /// SIGKILL to the child alone, and reaps it.
  void kill();

  /// A line to its stdin. False when it does not read any more.
  bool writeLine(const std::string& line);
  /// The next line of its stdout, without the newline; none at its end or after that time.
  std::optional<std::string> readLine(double seconds);
  /// Everything up to the end of its stdout.
  std::string readAll(double seconds);

 private:
  bool fill(double seconds);

  pid_t pid_ = -1;
  std::optional<int> status_;
  int input_ = -1;
  int output_ = -1;
  std::string buffer_;
  bool ended_ = false;
};

}  // namespace plemora::rig
