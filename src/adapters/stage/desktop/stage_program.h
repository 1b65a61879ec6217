#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "adapters/stage/desktop/stage_events.h"
#include "adapters/stage/desktop/stage_window_record.h"
#include "adapters/stage/desktop/stage_workspace.h"
#include "adapters/stage/stage_windows.h"
#include "platform/application.h"

namespace plemora {

/// The program as a process of the stage: an application, and the owner of its windows. The stage
/// does not run it; who does says when it starts and ends. Of the views of a window, those that are
/// clients get its events: the topmost under the pointer, and the topmost of all the keys. Main
/// thread; what it is given outlives it.
class StageProgram : public Application, public StageWindowOwner {
 public:
  StageProgram(StageWorkspace& workspace, StageWindows& windows);

  /// It runs now, as this application; the process identifier is a fresh one.
  void start(const std::string& bundleID, const std::string& name);
  /// It has ended.
  void end();
  bool isRunning() const { return pid_ >= 0; }
  std::int32_t pid() const { return pid_; }  ///< -1: it does not run
  const std::string& name() const { return name_; }

  /// The program asks to end, later in this turn; somebody else kills it; its Dock icon is clicked.
  std::function<void()> onTerminate;
  std::function<void()> onKilled;
  std::function<void()> onReopen;

  const std::vector<MainMenuSection>& mainMenu() const { return mainMenu_; }

  ActivationPolicy activationPolicy() override { return policy_; }
  void setActivationPolicy(ActivationPolicy policy) override;
  void setMainMenu(const std::vector<MainMenuSection>& menu) override { mainMenu_ = menu; }
  std::vector<ApplicationWindow> windows() override;
  void activate() override;
  void terminate() override;

  void appendWindows(std::vector<StageWindowRecord>& windows) override;
  void pointer(const StageWindowRecord& window, const StagePointerEvent& event) override;
  void scroll(const StageWindowRecord& window, const StageScrollEvent& event) override;
  std::int64_t keyOrder() override;
  void key(const StageKeyEvent& event) override;
  bool isProgram() override { return true; }

 private:
  /// One of the views that a window shows, and its place there, y down.
  struct Target {
    std::shared_ptr<HostedView> view;
    StageWindowClient* client = nullptr;
    Point origin;
  };

  /// The topmost that takes input, there or, without a position, at all.
  static Target targetAt(StageWindow& window, const std::optional<Point>& position);
  static Target targetOf(StageWindow& window, const std::shared_ptr<HostedView>& view);
  StageWindow* keyWindow();

  StageWorkspace& workspace_;
  StageWindows& windows_;
  bool movesWindow(StageWindow& window, const StagePointerEvent& event);

  std::optional<Point> grip_;          // of a title bar, from the window's origin
  std::weak_ptr<HostedView> pointed_;  // that the pointer is over, or that it was pressed in
  std::int32_t pid_ = -1;
  std::string name_;
  ActivationPolicy policy_ = ActivationPolicy::accessory;
  std::vector<MainMenuSection> mainMenu_;
};

}  // namespace plemora
