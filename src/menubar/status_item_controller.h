#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "audio/mixer_model.h"
#include "menubar/glass_panel.h"
#include "menubar/layout_helpers.h"
#include "menubar/menu_bar_services.h"
#include "menubar/panel_placement.h"
#include "menubar/panel_view.h"
#include "menubar/window_animation.h"
#include "platform/input_events.h"
#include "platform/main_queue.h"
#include "platform/screens.h"
#include "platform/status_bar.h"

namespace plemora {

/// Owns the program's item in the menu bar or tray and the mixer panel that drops down from it. A
/// left click toggles the panel, a right click shows a menu, a middle click mutes and the wheel
/// turns the default device. Lives as long as the program; main thread.
class StatusItemController {
 public:
  /// Where the panel hangs.
  enum class Anchor { menuBar = 0, controlCenter = 1 };

  /// Makes what draws the panel's content, when the panel is first opened and not before; the panel
  /// view outlives it. Null: it cannot be shown now, so the panel stays closed.
  using MakeContent = std::function<std::shared_ptr<HostedView>(PanelView&)>;

  // How the panel is framed.
  static constexpr double cornerRadius = 15;
  static constexpr double rimTop = 0.56;  ///< alphas of the rim's white
  static constexpr double rimRest = 0.18;
  static constexpr double rimZPosition = 10;

  StatusItemController(MixerModel& model, const MenuBarServices& services, MakeContent makeContent,
                       ControlCenterHooks controlCenter = {});
  ~StatusItemController();
  StatusItemController(const StatusItemController&) = delete;
  StatusItemController& operator=(const StatusItemController&) = delete;

  /// Shows the setup flow.
  std::function<void()> onSetUp;

  void open(Anchor from);
  void close();
  /// False from the moment that the panel has faded away.
  bool isPanelVisible() const { return shown_ && shown_->panel->isOnScreen(); }

  void clicked(StatusButtonEvent event);
  /// Closes the panel and pops the menu up.
  void showMenu();
  void updateIcon(std::optional<float> volume, bool muted);
  void contentHeightChanged(double height);
  /// The item's button, global, y up; none while it has no window.
  std::optional<Rect> iconFrame() const { return statusItem_->frame(); }

  void setUpFromMenu();
  void restoreAppleSound();
  void checkForUpdates();

  PanelView& panelView() { return panelView_; }
  /// Once it has been opened.
  GlassPanel& panel() { return *shown_->panel; }

 private:
  static constexpr double initialContentHeight = 300;

  /// What the first opening makes: a program that only sits in the menu bar stays small.
  struct Shown {
    std::shared_ptr<HostedView> content;
    std::shared_ptr<GlassPanel> panel;
    VisibilityGate gate;
    WindowAnimation animation;
    HeightReader heightReader;
  };

  void subscribe();
  bool makeShown();
  void turnMaster(int notches);
  std::vector<MenuItem> menuItems();
  std::vector<MenuItem> menuItemsOfHost();
  Rect anchorRect() const;
  PanelPlacement place() const;
  void installMonitors();
  void removeMonitors();
  void clickedElsewhere(const InputEvent& event);

  MixerModel& model_;
  const MenuBarServices services_;
  const ControlCenterHooks controlCenter_;
  PanelVisibility visibility_;
  PanelView panelView_;
  const MakeContent makeContent_;
  std::unique_ptr<Shown> shown_;
  double contentHeight_ = initialContentHeight;
  Anchor anchor_ = Anchor::menuBar;
  PanelPlacement placement_;
  std::optional<SymbolImage> image_;    // as shown
  std::optional<double> closedOnIcon_;  // media time of a click on the item that closed the panel
  std::vector<std::unique_ptr<EventMonitor>> monitors_;
  Timer permissionTimer_;
  std::unique_ptr<StatusItem> statusItem_;
  std::vector<Subscription> cancellables_;
};

}  // namespace plemora
