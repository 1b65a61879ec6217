#pragma once

#include <QImage>
#include <functional>
#include <memory>
#include <vector>

#include "adapters/stage/desktop/stage_desktop.h"
#include "main/stage/glass_windows.h"
#include "main/stage/stage_compositor.h"
#include "main/stage/stage_icons.h"
#include "main/stage/stage_wallpaper.h"
#include "menubar/panel_view.h"
#include "onboarding/onboarding_services.h"
#include "skin/look/control_center_look.h"

namespace plemora {

class SceneClock;
struct SkinState;

/// Lets the stage be seen: draws what the program's windows show, and all of the desktop. One
/// software picture for the screen and for files. GUI thread, once there is a QGuiApplication and
/// Qt Quick draws in software.
class StageShow {
 public:
  enum class Time {
    virtualTime,  ///< what QML animates moves by advance() alone
    realTime,     ///< by itself
  };

  /// The desktop outlives the show.
  StageShow(StageDesktop& desktop, Time time);
  ~StageShow();
  StageShow(const StageShow&) = delete;
  StageShow& operator=(const StageShow&) = delete;

  /// What to give to the program instead of the desktop's windows, and as the content of its
  /// panels, of its module and of the windows of setup.
  /// The program goes before the show.
  Windows& windows() { return windows_; }
  std::shared_ptr<HostedView> makeContent(PanelView& view, const ControlCenterLook& look);
  std::shared_ptr<HostedView> makeModuleView(SkinState& state, const ControlCenterLook& look);
  OnboardingContents onboardingContents();

  /// As the desktop's, with what is drawn: frame by frame, each shown in its place in time.
  void advance(double seconds);
  /// Whether QML follows the stage's time, and so has to be told of each frame.
  bool hasOwnTime() const { return sceneClock_ != nullptr; }
  /// Sees to what is new on the desktop, and moves what QML animates on to its time, where it
  /// follows that.
  void tick();
  /// Lets all that waits run, in the world and in the scenes. Time stands still.
  void settle();

  /// The whole of that screen at its scale; empty when there is no such screen.
  QImage picture(int screen);
  void setWallpaper(StageWallpaper wallpaper) { compositor_.setWallpaper(wallpaper); }
  void setShowsPointer(bool showsPointer) { compositor_.setShowsPointer(showsPointer); }
  StageCompositor& compositor() { return compositor_; }
  /// Called when a window of the program looks different than when last drawn.
  void setChangeHandler(std::function<void()> changed) {
    windows_.setChangeHandler(std::move(changed));
  }

  /// What can be operated in the windows of the program that are on screen.
  std::vector<StageControl> controls();

 private:
  double mainScale();
  std::shared_ptr<HostedView> shown(std::shared_ptr<HostedView> scene);

  StageDesktop& desktop_;
  std::unique_ptr<SceneClock> sceneClock_;
  StageIcons icons_;
  GlassWindows windows_;
  StageCompositor compositor_;
};

}  // namespace plemora
