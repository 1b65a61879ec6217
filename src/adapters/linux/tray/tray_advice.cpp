#include "adapters/linux/tray/tray_advice.h"

#include <sstream>
#include <string_view>

namespace plemora {

namespace {

constexpr std::string_view gnome =
    "GNOME shows such icons with the extension “AppIndicator and KStatusNotifierItem Support”. ";

struct Advice {
  std::string_view desktop;
  std::string_view text;
};

constexpr Advice known[] = {
    {"GNOME", gnome},
    {"Unity", gnome},
    {"KDE", "Add the widget “System Tray” to a panel to see Plemora's icon. "},
    {"XFCE", "Add “Status Tray Plugin” to a panel to see Plemora's icon. "},
    {"MATE", "Add “Notification Area” to a panel to see Plemora's icon. "},
    {"LXQt", "Add “Status Notifier” to a panel to see Plemora's icon. "},
    {"sway", "A bar with a tray, such as Waybar, shows Plemora's icon. "},
    {"Hyprland", "A bar with a tray, such as Waybar, shows Plemora's icon. "},
};

constexpr std::string_view unknown = "A panel with a tray would show Plemora's icon. ";
constexpr std::string_view always = "Or start Plemora once more: that opens its panel every time.";

}  // namespace

std::string trayAdvice(const std::string& desktop) {
  std::istringstream names(desktop);
  for (std::string name; std::getline(names, name, ':');) {
    for (const Advice& advice : known) {
      if (advice.desktop == name) {
        return std::string(advice.text) + std::string(always);
      }
    }
  }
  return std::string(unknown) + std::string(always);
}

}  // namespace plemora
