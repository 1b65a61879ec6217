#pragma once

#include <QDBusConnection>
#include <memory>
#include <string>

class QCoreApplication;

namespace plemora {

class LinuxProgram;

/// The icon in the tray and the panel below it.
class Panel {
 public:
  virtual ~Panel() = default;
  virtual void open() = 0;
  /// Whether setup was never brought to its end.
  virtual bool needsSetUp() = 0;
  /// Shows setup, or brings it forward.
  virtual void setUp() = 0;
};

/// All that needs windows. It stands in a module of its own, which is loaded when the program is to
/// be seen: as a service it then costs no toolkit. Main thread.
class DesktopUi {
 public:
  virtual ~DesktopUi() = default;

  /// The application object of a program with windows; there must be no other one.
  virtual std::unique_ptr<QCoreApplication> makeApplication(int& argc, char** argv) = 0;

  /// The application and the program outlive the panel.
  virtual std::unique_ptr<Panel> makePanel(LinuxProgram& program, const QDBusConnection& bus,
                                           const std::string& version) = 0;

  /// Draws the panel in all its states into the folder. Makes its own application object. The exit
  /// status.
  virtual int renderScreenshots(const std::string& folder) = 0;
};

/// Loads the module. Null when that fails; the problem says why.
DesktopUi* loadDesktopUi(std::string& problem);

}  // namespace plemora
