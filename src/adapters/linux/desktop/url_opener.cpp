#include "adapters/linux/desktop/url_opener.h"

#include <QProcess>
#include <QString>
#include <QStringList>
#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <utility>

#include "adapters/linux/desktop/desktop_paths.h"
#include "adapters/linux/desktop/program.h"
#include "base/log.h"

namespace plemora {

namespace {

constexpr Logger logger("desktop");

constexpr std::string_view settingsScheme = "x-apple.systempreferences:";
constexpr std::string_view soundPane = "com.apple.Sound-Settings.extension";

/// What a desktop's settings are called; the first program that is installed is taken.
struct SettingsPrograms {
  std::string_view desktop;  ///< a name of XDG_CURRENT_DESKTOP; empty: any
  std::vector<Command> sound;
  std::vector<Command> all;  ///< for panes that have no counterpart here
};

const std::vector<SettingsPrograms>& settingsPrograms() {
  static const std::vector<SettingsPrograms> table = {
      {"GNOME", {{"gnome-control-center", "sound"}}, {{"gnome-control-center"}}},
      {"Unity",
       {{"unity-control-center", "sound"}, {"gnome-control-center", "sound"}},
       {{"unity-control-center"}, {"gnome-control-center"}}},
      {"KDE",
       {{"systemsettings", "kcm_pulseaudio"},
        {"systemsettings5", "kcm_pulseaudio"},
        {"kcmshell6", "kcm_pulseaudio"},
        {"kcmshell5", "kcm_pulseaudio"}},
       {{"systemsettings"}, {"systemsettings5"}}},
      {"XFCE", {{"pavucontrol"}}, {{"xfce4-settings-manager"}}},
      {"LXQt", {{"pavucontrol-qt"}, {"pavucontrol"}}, {{"lxqt-config"}}},
      {"MATE", {{"mate-volume-control"}, {"pavucontrol"}}, {{"mate-control-center"}}},
      {"X-Cinnamon", {{"cinnamon-settings", "sound"}}, {{"cinnamon-settings"}}},
      {"Budgie",
       {{"budgie-control-center", "sound"}, {"gnome-control-center", "sound"}},
       {{"budgie-control-center"}, {"gnome-control-center"}}},
      {"Pantheon",
       {{"io.elementary.settings", "settings://sound"},
        {"io.elementary.switchboard", "settings://sound"}},
       {{"io.elementary.settings"}, {"io.elementary.switchboard"}}},
      {"COSMIC", {{"cosmic-settings", "sound"}}, {{"cosmic-settings"}}},
      {"",
       {{"pavucontrol"},
        {"pavucontrol-qt"},
        {"pwvucontrol"},
        {"mate-volume-control"},
        {"systemsettings", "kcm_pulseaudio"},
        // It refuses other desktops.
        {"env", "XDG_CURRENT_DESKTOP=GNOME", "gnome-control-center", "sound"}},
       {{"lxqt-config"}, {"xfce4-settings-manager"}, {"systemsettings"}}},
  };
  return table;
}

/// The program that must be installed for the command.
const std::string& programOf(const Command& command) {
  return command.front() == "env" ? command.at(2) : command.front();
}

std::vector<std::string> names(const std::string& list) {
  std::vector<std::string> found;
  std::string name;
  for (const char c : list + ':') {
    if (c != ':') {
      name += c;
    } else if (!name.empty()) {
      found.push_back(std::exchange(name, {}));
    }
  }
  found.emplace_back();  // any desktop
  return found;
}

bool hasScheme(const std::string& url) {
  const std::size_t colon = url.find(':');
  return colon != std::string::npos && colon > 0 &&
         std::isalpha(static_cast<unsigned char>(url[0])) != 0 &&
         std::all_of(url.begin(), url.begin() + static_cast<std::ptrdiff_t>(colon),
                     [](unsigned char c) {
                       return std::isalnum(c) != 0 || c == '+' || c == '-' || c == '.';
                     });
}

bool startDetached(const Command& command) {
  QStringList arguments;
  for (auto word = command.begin() + 1; word != command.end(); ++word) {
    arguments << QString::fromStdString(*word);
  }
  return QProcess::startDetached(QString::fromStdString(command.front()), arguments);
}

UrlOpener::Desktop thisDesktop() {
  const char* current = std::getenv("XDG_CURRENT_DESKTOP");
  const auto programs = std::make_shared<Programs>(DesktopPaths::fromEnvironment());
  return {current ? current : "",
          [programs](const std::string& program) { return programs->locate(program); },
          startDetached};
}

}  // namespace

UrlOpener::UrlOpener(Desktop desktop) : desktop_(std::move(desktop)) {}

UrlOpener::UrlOpener() : UrlOpener(thisDesktop()) {}

bool UrlOpener::open(const std::string& url) const {
  if (!hasScheme(url)) {
    logger.warning("\"" + url + "\" is no URL; nothing is opened");
    return false;
  }
  if (!url.starts_with(settingsScheme)) {
    if (startFirst({{"xdg-open", url}, {"gio", "open", url}})) {
      return true;
    }
    logger.warning("cannot open " + url +
                   ": neither xdg-open (of xdg-utils) nor gio can be started");
    return false;
  }
  const bool isSound = url.substr(settingsScheme.size()).starts_with(soundPane);
  for (const std::string& name : names(desktop_.names)) {
    for (const SettingsPrograms& programs : settingsPrograms()) {
      if (programs.desktop == name && startFirst(isSound ? programs.sound : programs.all)) {
        return true;
      }
    }
  }
  logger.warning(isSound ? "no program for the sound settings is installed; install pavucontrol or "
                           "the settings of your desktop"
                         : "no settings program of this desktop is installed");
  return false;
}

bool UrlOpener::startFirst(const std::vector<Command>& commands) const {
  for (Command command : commands) {
    const std::string program = desktop_.locate(programOf(command));
    if (program.empty()) {
      continue;
    }
    if (command.front() != "env") {
      command.front() = program;
    }
    if (desktop_.start(command)) {
      return true;
    }
    logger.warning("cannot start " + program);
  }
  return false;
}

bool openWithDesktop(const std::string& url) {
  return UrlOpener().open(url);
}

}  // namespace plemora
