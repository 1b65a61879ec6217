#pragma once

#include <QGuiApplication>
#include <QImage>
#include <QPoint>
#include <QTemporaryDir>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "support/child_process.h"

namespace plemora {

/// A compositor of the test's own with the layer shell: sway without a screen, drawing in software,
/// with one output of 1000x700 pixels called HEADLESS-1, in one colour. WAYLAND_DISPLAY is set to
/// it.
class SwayDisplay {
 public:
  static constexpr unsigned background = 0x305070;

  /// Pixels per point.
  explicit SwayDisplay(int scale = 1);
  ~SwayDisplay();
  SwayDisplay(const SwayDisplay&) = delete;
  SwayDisplay& operator=(const SwayDisplay&) = delete;

  /// Why it could not be started; empty: it runs.
  const std::string& fault() const { return fault_; }

  /// What the output shows.
  QImage screenshot();
  /// 0xRRGGBB, at a point.
  unsigned pixel(const QPoint& point);
  /// As wtype names them: "Escape", "Tab", "m".
  void pressKey(const std::string& key);

 private:
  /// Its output; none: it failed.
  std::optional<std::string> run(std::vector<std::string> arguments);
  void start(const std::string& config);

  int scale_;
  std::string fault_;
  std::string directory_;
  std::string socket_;
  std::unique_ptr<rig::ChildProcess> sway_;
  std::unique_ptr<rig::ChildProcess> keyboard_;
};

}  // namespace plemora
