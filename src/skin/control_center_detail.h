#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "audio/mixer_model.h"
#include "menubar/icon_highlight.h"
#include "menubar/layout_helpers.h"
#include "menubar/menu_bar_services.h"
#include "menubar/panel_view.h"
#include "platform/display_link.h"
#include "platform/input_events.h"
#include "platform/screens.h"
#include "skin/detail_panel.h"
#include "skin/skin_services.h"
#include "skin/skin_state.h"

namespace plemora {

class ControlCenterLocator;

/// The world as the detail panel needs it. All of it outlives the panel.
struct DetailServices {
  MenuBarServices menuBar;
  const ControlCenterLocator& locator;
  /// Makes what draws the mixer's rows, once; the panel view outlives it. Null: it cannot be shown
  /// now, so the panel stays closed.
  std::function<std::shared_ptr<HostedView>(PanelView&)> makeContent;
  /// Called once.
  MakeModuleView makeModuleView;
  /// Media time when a press was last taken for the module: that press is no click elsewhere.
  std::function<double()> lastHandledPress;
};

/// The glass panel that grows out of the program's module in Control Center, as Control Center's
/// own modules do: holds the mixer, and closes by shrinking back into the module or by fading away.
/// Control Center itself is closed meanwhile. Main thread.
class ControlCenterDetail {
 public:
  enum class Phase { expanding, open, collapsing, fading, resizing };

  /// The model, the state and the services outlive it.
  ControlCenterDetail(MixerModel& model, SkinState& skinState, DetailServices services);
  ~ControlCenterDetail();
  ControlCenterDetail(const ControlCenterDetail&) = delete;
  ControlCenterDetail& operator=(const ControlCenterDetail&) = delete;

  std::function<void()> onCollapseFinished;  ///< it is the module again; the panel goes next
  std::function<void()> willPresent;
  std::function<void()> onClosed;  ///< the panel is gone
  std::function<void()> onSetUp;   ///< shows the setup flow

  /// The panel is built and waits, unseen, for the mouse button to be let go. Its owner says so.
  bool prepared = false;

  /// Makes the panel over the module (global, y up), unseen.
  void build(const Rect& moduleRect);
  /// Lets the panel grow out of the module; builds it first unless that was done for this very
  /// frame.
  void present(const Rect& moduleRect);
  /// Shrinks the panel into the module, once Control Center is open again.
  void collapse();
  /// Fades the panel away.
  void dismiss();
  /// Ends the panel at once.
  void tearDown();
  /// The content wants to be so high, in points; the panel follows.
  void contentHeightChanged(double height);

  /// None: there is no panel.
  std::optional<Phase> phase() const { return panel_ ? std::optional(phase_) : std::nullopt; }
  bool isWaitingForControlCenter() const { return waitingForControlCenter_; }
  /// The fully open panel (global, y up).
  const Rect& panelFrame() const { return panelFrame_; }
  PanelView& panelView() { return panelView_; }
  /// Null: there is none.
  DetailPanel* panel() { return panel_.get(); }

 private:
  static constexpr double initialContentHeight = 300;

  void followAppearance();
  bool makeViews();
  void clear();
  bool canClose() const;
  void start(Phase phase);
  void startLink();
  void installMonitors();
  void clickedElsewhere();
  bool isHandledClick() const;
  const Screen* screen() const;
  double now() const;

  void tick();
  void expand(double elapsed);
  void shrink(double elapsed);
  void fade(double elapsed);
  void resize(double elapsed);
  void beBackInControlCenter();
  void settle();

  MixerModel& model_;
  SkinState& skinState_;
  const DetailServices services_;
  PanelView panelView_;
  IconHighlight iconHighlight_;

  // Made once: new ones would take longer than a click.
  std::shared_ptr<HostedView> detailHost_;
  std::shared_ptr<HostedView> moduleHost_;
  std::optional<HeightReader> heightReader_;

  std::unique_ptr<DetailPanel> panel_;
  std::unique_ptr<DisplayLink> link_;
  std::vector<std::unique_ptr<EventMonitor>> monitors_;
  double contentHeight_ = initialContentHeight;
  Rect moduleFrame_;
  Rect panelFrame_;
  Phase phase_ = Phase::expanding;
  double phaseStart_ = 0;  // media time
  Rect fromRect_;
  Rect toRect_;
  double fromRadius_ = 0;
  double toRadius_ = 0;
  bool waitingForControlCenter_ = false;
  Subscription appearance_;
};

}  // namespace plemora
