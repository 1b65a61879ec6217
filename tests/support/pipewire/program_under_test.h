#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "support/child_process.h"

namespace plemora::rig {

class PrivateSession;

/// What a run of plemoractl gave.
struct ControlResult {
  int status = -1;  ///< of its exit; -1: it did not end
  std::string output;
};

/// A row of "plemoractl list".
struct AppRow {
  std::string id;
  std::string name;
  bool playing = false;
  double volume = 1;
  bool muted = false;
  std::string output;
  bool routed = false;
};

/// The real program in a private session, and the command line that controls it.
class ProgramUnderTest {
 public:
  /// Starts it and waits until it answers. Throws std::runtime_error when it does not. desktop:
  /// what it needs of the environment to show its window; empty: it runs without one.
  explicit ProgramUnderTest(PrivateSession& session, std::vector<std::string> arguments = {},
                            std::vector<std::string> desktop = {});

  ChildProcess& process() { return *process_; }
  /// Starts it again, after it has ended or was killed.
  void start();

  ControlResult control(const std::vector<std::string>& arguments);
  /// As control, for what must succeed: throws std::runtime_error with what it wrote.
  std::string must(const std::vector<std::string>& arguments);

  std::vector<AppRow> apps();
  /// Waits for a row of the app of that name or id that plays; none when there is none in time.
  std::optional<AppRow> waitForApp(const std::string& name, double seconds = 10);

  /// What the kernel says of the process: open files, threads, resident KiB, and how often its
  /// threads went to sleep by themselves so far.
  std::size_t openFiles() const;
  std::size_t threads() const;
  std::size_t residentKiB() const;
  std::size_t wakeUps() const;

 private:
  PrivateSession& session_;
  std::vector<std::string> arguments_;
  std::vector<std::string> desktop_;
  std::unique_ptr<ChildProcess> process_;
};

/// Whether this build carries a sanitizer, whose memory and time are its own.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool isSanitized = true;
#else
inline constexpr bool isSanitized = false;
#endif

/// Resident memory of the process.
std::size_t residentKiBOf(pid_t pid);
/// Milliseconds of CPU time that the process has used.
double cpuMilliseconds(pid_t pid);

}  // namespace plemora::rig
