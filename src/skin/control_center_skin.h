#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

#include "base/geometry.h"
#include "base/published.h"
#include "controlcenter/control_center_locator.h"
#include "devices/output_devices.h"
#include "platform/accessibility.h"
#include "platform/display_link.h"
#include "platform/input_events.h"
#include "platform/main_queue.h"
#include "platform/serial_queue.h"
#include "skin/skin_services.h"
#include "skin/skin_state.h"

namespace plemora {

class SkinOverlay;
struct ModuleGeometry;

/// Shows a live module over the program's tiles while Control Center is open: finds the tiles,
/// follows them from frame to frame, and takes drags of the volume and presses by watching the
/// pointer, since the overlay itself lets every click through. Main thread; the tiles alone are
/// looked for on a queue of its own. Without the user's trust for accessibility it shows nothing,
/// and looks again every second.
class ControlCenterSkin {
 public:
  /// A module's place on screen: points of the global space, y up.
  using ModuleCallback = std::function<void(const Rect& moduleFrame)>;

  /// The devices outlive it.
  ControlCenterSkin(const SkinServices& services, OutputDevices& outputs, MakeModuleView makeView);
  ~ControlCenterSkin();
  ControlCenterSkin(const ControlCenterSkin&) = delete;
  ControlCenterSkin& operator=(const ControlCenterSkin&) = delete;

  /// What the module shows.
  SkinState state;

  /// A press on the module, beside the slider, has closed Control Center: get ready.
  ModuleCallback onPrepareDetail;
  /// That press has been let go.
  ModuleCallback onOpenDetail;

  bool isSuppressed = false;  ///< while set, tick() does nothing
  /// The next show does not fade in; cleared by it, and once there is nothing to show it over.
  bool showInstantly = false;

  bool isShowing() const { return isShowing_; }
  /// Media time in seconds when the pointer last pressed the module, or let go anywhere while it
  /// was shown; minus infinity before the first time.
  double lastHandledPress() const { return lastHandledPress_; }
  /// Where the module was last seen: points of the global space, y up.
  const Rect& moduleFrame() const { return moduleFrame_; }

  /// Looks for Control Center from now on, every second.
  void start();
  /// Hides the overlay and looks for nothing any more.
  void stop();
  /// Hides the overlay and lets go of the pointer; a later tick may show it again.
  void hide();
  /// Follows Control Center from frame to frame until it has been closed for a while; ticks once
  /// at once when it did not do so already.
  void startTracking();
  /// What is done for each frame of the display while tracking.
  void tick();

 private:
  enum class DragKind { none, slider, detailPress };

  void followOutputs();

  void housekeep();
  void observe(std::int32_t pid);
  std::optional<std::int32_t> controlCenterPid() const;

  void followControlCenter();
  void follow(const ControlCenterWindow& panel);
  bool isFading(double alpha);
  void scanIfDue();
  void finishScan(std::vector<AccessibilityElementPointer> tiles);
  std::vector<Rect> framesToUse(const Rect& panel);
  void forgetFrames();

  void show(const Rect& rect, bool isWide, const std::vector<Rect>& pills, int panelLevel);
  void resolveStyle();
  void becomeVisible();
  void advanceFadeIn();

  void installMonitors();
  void handle(const InputEvent& event);
  void press(const Point& place);
  void release();
  void setVolumeAt(double x);
  void updateHover(const Point& pointer);
  std::optional<std::size_t> pillAt(double x) const;
  Point inModule(const Point& location) const;
  ModuleGeometry geometry() const;

  const SkinServices services_;
  OutputDevices& outputs_;
  const MakeModuleView makeView_;
  std::vector<Subscription> cancellables_;

  std::unique_ptr<DisplayLink> displayLink_;
  Timer housekeeping_;
  std::unique_ptr<AccessibilityObserver> observer_;
  std::int32_t observedPID_ = 0;
  int quietTicks_ = 0;

  bool isScanning_ = false;
  double lastScan_ = -std::numeric_limits<double>::infinity();  // media time
  std::vector<AccessibilityElementPointer> tiles_;              // from left to right
  std::optional<std::vector<Rect>> cachedFrames_;               // y down, as accessibility has them
  std::optional<Rect> cachedPanelWindow_;                       // for which they were read

  std::string overlayStyle_;  // that the overlay was made for, or the next one will be
  std::unique_ptr<SkinOverlay> overlay_;
  bool isShowing_ = false;
  Rect moduleFrame_;
  std::vector<Rect> pillRects_;  // of the tiles, in the module, y down
  std::optional<std::size_t> hoveredPill_;

  DragKind drag_ = DragKind::none;
  double lastHandledPress_ = -std::numeric_limits<double>::infinity();
  bool wasEditing_ = false;
  bool isClosing_ = false;
  std::optional<double> panelAlpha_;  // of Control Center's panel, at the last tick
  std::optional<double> fadeStart_;   // media time
  std::vector<std::unique_ptr<EventMonitor>> mouseMonitors_;

  std::stop_source scans_;                                // ends one that is under way
  std::shared_ptr<int> life_ = std::make_shared<int>(0);  // results of scans hold it weakly
  std::shared_ptr<SerialQueue> scanQueue_;                // the first to go
};

}  // namespace plemora
