#pragma once

#include <functional>
#include <memory>

#include "app/services/dock_presence.h"
#include "base/geometry.h"
#include "menubar/menu_bar_services.h"
#include "menubar/window_animation.h"
#include "onboarding/setup_view.h"
#include "platform/hosted_view.h"
#include "platform/main_queue.h"
#include "platform/panel_window.h"

namespace plemora {

/// What lies behind the content of setup's window.
enum class SetupGround {
  material,  ///< the system's, for windows
  none,      ///< the content is opaque
};

/// The titled window that setup is shown in. The program has a Dock icon as long as it is on
/// screen. Main thread.
class SetupWindow {
 public:
  using MakeContent = std::function<std::shared_ptr<HostedView>(SetupView&)>;

  static constexpr double fadeDuration = 0.3;  ///< seconds

  /// The services, and the view that is drawn, outlive it. What draws is made by show().
  SetupWindow(const MenuBarServices& services, SetupView& view, MakeContent makeContent,
              SetupGround ground = SetupGround::material);
  ~SetupWindow();
  SetupWindow(const SetupWindow&) = delete;
  SetupWindow& operator=(const SetupWindow&) = delete;

  /// The user has closed it; it is off the screen.
  std::function<void()> windowWillClose;

  /// Brings it before everything else, in the middle of the main screen if it was not on screen.
  /// False: there is nothing to draw it.
  bool show();
  /// From show() until it is closed or begins to fade.
  bool isShown() const { return isShown_; }
  /// Takes it off the screen.
  void close();
  /// Fades it away, while it is shown; the completion runs once it is gone, never when it was shown
  /// again before.
  void fadeOut(std::function<void()> completion);
  /// A place in its content (y down), on the screens (global, y up).
  Rect onScreen(const Rect& inContent) const;
  /// Global, y up; empty while there is no window.
  Rect frame() const { return window_ ? window_->frame() : Rect{}; }

 private:
  bool makeWindow();
  Rect visibleArea() const;
  void place();
  void fit(double height);
  void closed();
  void hide();
  void gone();

  const MenuBarServices services_;
  SetupView& view_;
  const MakeContent makeContent_;
  const SetupGround ground_;
  DockPresence dockPresence_;
  std::shared_ptr<HostedView> content_;
  std::shared_ptr<PanelWindow> window_;
  std::unique_ptr<WindowAnimation> animation_;
  bool isShown_ = false;
  Timer letGo_;  // of what is drawn
};

}  // namespace plemora
