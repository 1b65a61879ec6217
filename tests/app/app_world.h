#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "adapters/stage/faulty_stores.h"
#include "adapters/stage/fresh_layout.h"
#include "adapters/stage/memory_files.h"
#include "adapters/stage/memory_preferences.h"
#include "adapters/stage/memory_resources.h"
#include "adapters/stage/scripted_accessibility.h"
#include "adapters/stage/scripted_appearance.h"
#include "adapters/stage/scripted_application.h"
#include "adapters/stage/scripted_control_reload.h"
#include "adapters/stage/scripted_hosted_view.h"
#include "adapters/stage/scripted_input_events.h"
#include "adapters/stage/scripted_login_item.h"
#include "adapters/stage/scripted_notifications.h"
#include "adapters/stage/scripted_route_picker.h"
#include "adapters/stage/scripted_screens.h"
#include "adapters/stage/scripted_status_bar.h"
#include "adapters/stage/scripted_update_service.h"
#include "adapters/stage/scripted_window_list.h"
#include "adapters/stage/stage_windows.h"
#include "adapters/stage/virtual_display_links.h"
#include "app/app_delegate.h"
#include "app/services/launch_at_login.h"
#include "app/services/updater.h"
#include "audio/audio_world.h"
#include "controlcenter/control_center_layout.h"
#include "controlcenter/control_center_locator.h"
#include "controlcenter/layout_record.h"
#include "platform/file_drag.h"
#include "skin/look/control_center_look.h"
#include "support/obedient_control_center.h"

namespace plemora {

/// What happened when, such as "0.00 status item"; the same thing twice in a row is one line.
class EventLog {
 public:
  explicit EventLog(VirtualClock& clock) : clock_(clock) {}

  std::vector<std::string> lines;

  void note(const std::string& what) {
    char line[200];
    std::snprintf(line, sizeof line, "%.2f %s", clock_.mediaTime(), what.c_str());
    if (lines.empty() || lines.back() != line) {
      lines.emplace_back(line);
    }
  }

 private:
  VirtualClock& clock_;
};

/// The whole program on a simulated Mac, from start to end, and again. A Control Center runs, with
/// the layout of a fresh system; once ended it stays away.
struct AppWorld : AudioWorld {
  struct Application : ScriptedApplication {
    EventLog& log;
    explicit Application(EventLog& events) : log(events) {}
    void setMainMenu(const std::vector<MainMenuSection>& menu) override {
      log.note("main menu");
      ScriptedApplication::setMainMenu(menu);
    }
  };
  struct StatusBar : ScriptedStatusBar {
    EventLog& log;
    explicit StatusBar(EventLog& events) : log(events) {}
    std::unique_ptr<StatusItem> makeItem(const StatusItemOptions& item,
                                         StatusItemHandlers itemHandlers) override {
      log.note("status item");
      return ScriptedStatusBar::makeItem(item, std::move(itemHandlers));
    }
  };
  struct Updates : ScriptedUpdateService {
    EventLog& log;
    explicit Updates(EventLog& events) : log(events) {}
    std::optional<std::string> start() override {
      log.note("updater");
      return ScriptedUpdateService::start();
    }
  };
  struct Item : ScriptedLoginItem {
    EventLog& log;
    explicit Item(EventLog& events) : log(events) {}
    std::optional<std::string> enable() override {
      log.note("login item");
      return ScriptedLoginItem::enable();
    }
  };
  struct Reload : ScriptedControlReload {
    EventLog& log;
    explicit Reload(EventLog& events) : log(events) {}
    void reloadAllControls() override {
      log.note("reload");
      ScriptedControlReload::reloadAllControls();
    }
  };
  struct Accessibility : ScriptedAccessibility {
    EventLog& log;
    explicit Accessibility(EventLog& events) : log(events) {}
    std::unique_ptr<AccessibilityObserver> observe(std::int32_t pid,
                                                   const std::vector<std::string>& notifications,
                                                   std::function<void()> handler) override {
      log.note("skin");
      return ScriptedAccessibility::observe(pid, notifications, std::move(handler));
    }
  };
  struct Notifications : ScriptedNotifications {
    EventLog& log;
    explicit Notifications(EventLog& events) : log(events) {}
    void observe(const std::string& name, std::function<void()> handler) override {
      log.note("tile signal");
      ScriptedNotifications::observe(name, std::move(handler));
    }
  };

  /// Nothing can be dragged.
  struct Drag : FileDrag {
    bool begin(const std::string&, std::function<void(bool)>) override { return false; }
  };

  EventLog events{clock};
  ScriptedAppearance appearance;
  Application application{events};
  ScriptedScreens screens;
  ScriptedInputEvents input;
  StatusBar bar{events};
  ScriptedRoutePicker picker;
  Updates updates{events};
  Item loginItem{events};
  Reload reload{events};
  Notifications notifications{events};
  StageWindows windows{main, screens};
  VirtualDisplayLinks links{main};
  ControlCenterLook look{defaults, system, appearance};
  Updater updater{updates};
  LaunchAtLogin launchAtLogin{defaults, system, loginItem};
  MemoryPreferences stored;
  FaultyPreferences preferences{stored};
  MemoryFiles files;
  ScriptedWindowList windowList;
  Accessibility accessibility{events};
  MemoryResources resources;
  Drag fileDrag;
  ObedientControlCenter center{main, workspace, accessibility, windowList};
  ControlCenterLayout layout{preferences, files, clock, workspace};
  ControlCenterLocator locator{screens, windowList, accessibility, preferences, workspace};
  std::optional<AppDelegate> delegate;

  AppWorld() {
    storeFreshLayout(stored);
    defaults.setBoolean("didCompleteSetup", true);
    center.launch();
    center.appear();
    center.pressed = [this](const std::string& what) { events.note("press " + what); };
    workspace.onForceTerminate = [this](const RunningApplication&) {
      events.note("restart");
      center.vanish();
    };
    preferences.gate = [this](const std::string& call) {
      if (call == "value boxes") {
        events.note("read layout");
      }
      return !isLayoutUnreadable || call != "value boxes";
    };
  }
  ~AppWorld() {
    delegate.reset();
    settle();
  }

  bool isLayoutUnreadable = false;

  static std::shared_ptr<HostedView> view() { return std::make_shared<ScriptedHostedView>(); }

  AppDelegate& make() {
    delegate.reset();
    delegate.emplace(AppServices{
        .menuBar = {main, clock, defaults, workspace, application, screens, input, windows, links,
                    bar, picker, look, updater},
        .layout = layout,
        .preferences = preferences,
        .locator = locator,
        .accessibility = accessibility,
        .consent = consent,
        .windowList = windowList,
        .fileDrag = fileDrag,
        .notifications = notifications,
        .controlReload = reload,
        .system = system,
        .launchAtLogin = launchAtLogin,
        .queues = queues,
        .files = files,
        .resources = resources,
        .ownPid = ownPid,
        .arguments = arguments,
        .makeModel =
            [this] {
              events.note("model");
              return std::make_shared<MixerModel>(services());
            },
        .makeContent = [](PanelView&) { return std::make_shared<ScriptedHostedView>(); },
        .makeModuleView = [](SkinState&) { return std::make_shared<ScriptedHostedView>(); },
        .onboardingContents = {.makeSetup = [](SetupView&) { return view(); },
                               .makeHelper = [](HelperView&) { return view(); },
                               .makeCallout = [](CalloutView&) { return view(); },
                               .makeRipple = [] { return view(); }},
        .print = [this](const std::string& line) { events.note("print " + line); },
        .exit = [this](int status) { events.note("exit " + std::to_string(status)); },
    });
    return *delegate;
  }

  AppDelegate& launch(std::vector<std::string> with = {}) {
    arguments = std::move(with);
    make().applicationDidFinishLaunching();
    settle();
    return *delegate;
  }

  /// A layout with so many tiles of the program, with Sound or without.
  void storeLayout(int tiles, bool hasSound) {
    storeFreshLayout(stored);
    auto record = ControlCenterLayout::Layout::read(stored);
    for (int i = 0; i < tiles; ++i) {
      record.addMixer("tile " + std::to_string(i), 2 * i, 20);
    }
    if (!hasSound) {
      record.elements.erase(record.elements.begin() +
                            (record.soundElement() - record.elements.data()));
    }
    record.write(stored, StoreOrder::controlsFirst);
  }
  /// As setup leaves the settings and the layout.
  void setUp() {
    storeLayout(2, false);
    defaults.setBoolean("soundReplaced", true);
  }
  std::size_t tiles() { return ControlCenterLayout::Layout::read(stored).mixerElements().size(); }
  bool hasSound() { return ControlCenterLayout::Layout::read(stored).soundElement() != nullptr; }

  /// Null: there is none.
  StageWindow* window(const std::string& identifier) {
    const auto found = std::ranges::find_if(windows.windows(), [&](const StageWindow* each) {
      return each->options.identifier == identifier;
    });
    return found != windows.windows().end() ? *found : nullptr;
  }

  /// Left edge of the panel below the status item, and below Control Center's icon.
  static constexpr double belowItem = 1058;
  static constexpr double belowCenter = 1089;

  /// Left edge of the panel; none while it is closed.
  std::optional<double> panelX() {
    if (!delegate->statusItem() || !delegate->statusItem()->isPanelVisible()) {
      return std::nullopt;
    }
    return window("mixer-panel")->frame().x;
  }
};

}  // namespace plemora
