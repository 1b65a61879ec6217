#pragma once

#include <gtest/gtest.h>

#include <QPoint>
#include <QRect>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "support/child_process.h"
#include "support/pipewire/player.h"
#include "support/pipewire/private_session.h"
#include "support/pipewire/program_under_test.h"
#include "support/pipewire/sink_recorder.h"
#include "windows/x_display.h"

namespace plemora::rig {

/// Programs that show icons: lxqt-panel of the session bus, trayer of the X server; or nobody.
enum class TrayHost { lxqtPanel, trayer, none };

struct DeskSetup {
  std::string name = "Desk";
  TrayHost host = TrayHost::lxqtPanel;
  bool hasWindowManager = true;
  bool hasCompositingManager = true;
  bool isFirstStart = false;  ///< the program has no settings yet
};

/// What assistive technology is told of a control.
struct Control {
  std::string name;
  std::string role;
  std::string description;
  double value = 0;
  QRect frame;
  std::vector<std::string> states;

  bool is(const std::string& state) const;
};

/// A desktop of our own with sound, and the real program on it: an X server of 1000x700 with a bar
/// of icons at the top, a session bus, a sound server with the sinks "first" and "second". Every
/// question waits for its answer, up to some seconds. One thread.
class Desk {
 public:
  explicit Desk(const DeskSetup& setup = {});
  ~Desk();

  PrivateSession& session() { return session_; }
  XDisplay& display() { return display_; }
  ProgramUnderTest& plemora() { return *plemora_; }

  void startTray();
  void stopTray() { tray_.reset(); }
  /// The bar of icons on the screen.
  QRect bar();
  /// The program's icon at the end of the bar, the square that it has there.
  QRect icon();
  bool showsIcon();

  /// The program's settings as they are in the file; an empty text: there is none.
  std::string settings() const;
  std::string settingsFile() const {
    return session_.directory() + "/config/plemora/settings.json";
  }

  /// isService: without a window, so that start() over it brings one. more: of the environment.
  void startProgram(bool isService = false, const std::vector<std::string>& more = {});
  /// Starts the program, and kills it that many seconds later.
  void startAndKill(double seconds);
  /// One more start; its exit status.
  std::optional<int> startAgain(const std::vector<std::string>& arguments = {});

  /// The panel's frame while it is shown.
  std::optional<QRect> panel();
  /// Where a panel of that height belongs when it hangs under the icon.
  QRect placeUnderIcon(int height);
  bool opens();
  bool closes();
  /// Whether the panel comes to rest with this height in its place.
  testing::AssertionResult restsUnderIcon(int height);
  /// Shown windows of the program, the panel included.
  std::vector<QRect> windows();

  std::vector<Control> controls();
  /// Waits for a shown control; of several the topmost. Throws std::runtime_error when there is
  /// none.
  Control control(const std::string& name, const std::string& role = {});
  /// Whether a control of that name is to be seen before long.
  bool shows(const std::string& name);
  /// Whether nothing is to be seen of the program's windows before long.
  bool showsNothing();
  /// Presses Tab until the control of that name has the keys.
  bool tabTo(const std::string& name);
  bool act(const std::string& action, const std::string& name);
  void click(const QRect& target, int button = 1) { display_.click(target.center(), button); }

  /// An app that plays this signal to "first" and is listed.
  std::unique_ptr<TonePlayer> play(const std::string& name, const Signal& signal);
  /// What plemoractl says of the app.
  AppRow row(const std::string& name);
  /// Its "master" in percent and whether muted, as text.
  std::string master() { return plemora_->must({"master"}); }

 private:
  std::vector<std::string> environment() const;

  TrayHost host_;
  PrivateSession session_;
  XDisplay display_;
  std::unique_ptr<ChildProcess> accessibility_;
  std::unique_ptr<ChildProcess> tray_;
  std::unique_ptr<ProgramUnderTest> plemora_;
  std::unique_ptr<ChildProcess> reader_;
};

/// Whether the sink plays this constant within a thousandth.
bool hears(SinkRecorder& recorder, double value);

}  // namespace plemora::rig
