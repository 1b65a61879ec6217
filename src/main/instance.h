#pragma once

#include <memory>
#include <string>
#include <vector>

#include "main/program_options.h"

class QCoreApplication;
class QDBusConnection;

namespace plemora {

class DesktopUi;
class InstanceLock;

/// Exit statuses of the programs.
enum Exit { success = 0, failure = 1, usage = 2 };

/// Writes "plemora: MESSAGE" to the standard error.
void printError(const std::string& message);

/// The one instance of a user session: the engine, and the panel while there is a desktop to show
/// it on. Main thread.
class Instance {
 public:
  /// argc and argv outlive it; arguments: the same without the program's name.
  Instance(int& argc, char** argv, std::vector<std::string> arguments);
  ~Instance();

  /// Runs until it is ended, or hands over to the instance that runs already. hasDesktop: shows
  /// the panel there; a service does when it is asked to join a desktop. Options: what is to be
  /// seen at once.
  Exit run(bool hasDesktop, const ProgramOptions& options);

 private:
  /// Exchanges the application object for one that has windows.
  void makeWindowed();
  Exit runEngine(QDBusConnection& bus, InstanceLock& lock);

  int& argc_;
  char** argv_;
  const std::vector<std::string> arguments_;
  DesktopUi* ui_ = nullptr;
  ProgramOptions options_;  ///< of the last start that was handed over, at first of this one
  std::unique_ptr<QCoreApplication> application_;
};

}  // namespace plemora
