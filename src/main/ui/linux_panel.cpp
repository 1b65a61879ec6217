#include "main/ui/linux_panel.h"

#include <QFontDatabase>
#include <QIcon>
#include <algorithm>
#include <vector>

#include "adapters/linux/tray/tray_advice.h"
#include "base/log.h"
#include "main/ui/loader_tables.h"
#include "menubar/menu_bar_services.h"

namespace plemora {

namespace {

constexpr Logger logger("program");

constexpr double readyingDelay = 0.5;  // seconds
constexpr double settlingDelay = 0.5;  // once the panel is there

/// What to do while the program may not change the sound.
std::string audioAdvice(bool hasSoundServer) {
  return hasSoundServer
             ? "The sound server does not let Plemora link streams. Ask whoever looks after this "
               "computer for that permission."
             : "No sound server answers. Plemora needs PipeWire: install it if it is missing, or "
               "start it with “systemctl --user start pipewire wireplumber”. Setup then goes on by "
               "itself.";
}

/// The first question about fonts or icons reads the desktop's description of all of them, which
/// takes about as long as showing the panel does. The first click shall not wait for that.
void findFontsAndIcons() {
  QFontDatabase::hasFamily("Inter");
  QIcon::hasThemeIcon("audio-volume-high");
}

}  // namespace

LinuxPanel::LinuxPanel(LinuxProgram& program, const QDBusConnection& bus,
                       const std::string& version)
    : queue_(program.mainQueue()),
      appearance_(bus),
      look_(program.defaults(), program.system(), appearance_,
            ControlCenterLook::ReleaseSource::settingElseSystem),
      notifier_(bus),
      updates_(copyOf(program.system().bundlePath()), version,
               [this](const std::string& title, const std::string& text) {
                 notifier_.show(title, text);
               }),
      updater_(updates_),
      loginItem_(XdgLoginItem::defaultFolder(), program.system().bundlePath()),
      launchAtLogin_(program.defaults(), program.system(), loginItem_, {"/usr/", "/opt/"}),
      statusBar_(bus, appearance_),
      routePicker_(program.mainQueue(), program.model().outputs(), makeRaopDiscovery()),
      controller_(program.model(), services(program),
                  [this](PanelView& view) { return makeScene(view); }),
      setup_({services(program), program.consent(), loginItem_,
              [this](SetupView& view) {
                PanelParts* loaded = parts();
                return loaded != nullptr ? loaded->makeSetup(view, appearance_) : nullptr;
              },
              [&program] { return audioAdvice(program.hasSoundServer()); },
              [this] { return statusBar_.showsItem(); },
              trayAdvice(qEnvironmentVariable("XDG_CURRENT_DESKTOP").toStdString())}),
      readying_(program.mainQueue().after(readyingDelay, findFontsAndIcons)) {
  desktop_.setOwnAreas([this] {
    const auto icon = controller_.iconFrame();
    return icon ? std::vector<Rect>{*icon} : std::vector<Rect>();
  });
  controller_.onSetUp = [this] { setUp(); };
  setup_.onShowPanel = [this] { open(); };
  updater_.start();
  // What the user does not want, or has switched off, in an earlier installation too, stays so.
  if (!program.defaults().boolean(DesktopSetup::skippedLoginItemKey).value_or(false) &&
      loginItem_.state() != LoginItemState::switchedOff) {
    launchAtLogin_.enableOnFirstRun();
  }
}

LinuxPanel::~LinuxPanel() {
  desktop_.setOwnAreas({});
}

MenuBarServices LinuxPanel::services(LinuxProgram& program) {
  return {program.mainQueue(),
          program.clock(),
          program.defaults(),
          program.workspace(),
          desktop_.application(),
          desktop_.screens(),
          desktop_.inputEvents(),
          windows_,
          desktop_.displayLinks(),
          statusBar_,
          routePicker_,
          look_,
          updater_};
}

void LinuxPanel::open() {
  controller_.open(StatusItemController::Anchor::menuBar);
}

void LinuxPanel::setUp() {
  controller_.close();
  setup_.show();
}

PanelParts* LinuxPanel::parts() {
  if (!parts_) {
    std::string problem;
    const LoaderTables tables;
    PanelModule* module = loadPanelModule(problem);
    if (module == nullptr) {
      logger.error("the panel cannot be loaded: " + problem);
      notifier_.show("Plemora",
                     "Its windows cannot be shown: a part of the program is missing. " + problem);
      return nullptr;
    }
    parts_ = module->makeParts(desktop_, queue_);
    settling_ = queue_.after(settlingDelay, [tables] { tables.release(); });
  }
  return parts_.get();
}

std::shared_ptr<HostedView> LinuxPanel::makeScene(PanelView& view) {
  PanelParts* loaded = parts();
  if (loaded == nullptr) {
    return nullptr;
  }
  return loaded->makeScene(view, look_, [this](const Rect& inScene) {
    const Rect panel = controller_.panel().frame();
    return Rect{panel.x + inScene.x, panel.maxY() - inScene.y - inScene.height, inScene.width,
                inScene.height};
  });
}

}  // namespace plemora
