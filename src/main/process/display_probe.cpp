#include "main/process/display_probe.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string_view>

namespace plemora {

namespace {

// What tells a desktop: its displays, its settings and its look.
constexpr std::array desktopVariables = {"DISPLAY",
                                         "XAUTHORITY",
                                         "WAYLAND_DISPLAY",
                                         "XDG_CURRENT_DESKTOP",
                                         "XDG_SESSION_TYPE",
                                         "XDG_SESSION_DESKTOP",
                                         "DESKTOP_SESSION",
                                         "GTK_THEME",
                                         "QT_QPA_PLATFORM",
                                         "QT_SCALE_FACTOR",
                                         "QT_FONT_DPI",
                                         "LANG",
                                         "QT_LINUX_ACCESSIBILITY_ALWAYS_ON"};

std::string variable(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? "" : value;
}

bool x11Answers() {
  if (variable("DISPLAY").empty()) {
    return false;
  }
  xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
  const bool answers = xcb_connection_has_error(connection) == 0;
  xcb_disconnect(connection);
  return answers;
}

bool waylandAnswers() {
  const std::string name = variable("WAYLAND_DISPLAY");
  const std::string directory = variable("XDG_RUNTIME_DIR");
  if (name.empty() || (name.front() != '/' && directory.empty())) {
    return false;
  }
  const std::string path = name.front() == '/' ? name : directory + "/" + name;
  sockaddr_un address = {};
  if (path.size() >= sizeof address.sun_path) {
    return false;
  }
  address.sun_family = AF_UNIX;
  path.copy(address.sun_path, path.size());
  const int descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const bool answers =
      descriptor >= 0 &&
      connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  if (descriptor >= 0) {
    close(descriptor);
  }
  return answers;
}

}  // namespace

bool displayAnswers() {
  const std::string platform = variable("QT_QPA_PLATFORM");
  if (platform.starts_with("xcb")) {
    return x11Answers();
  }
  if (platform.starts_with("wayland")) {
    return waylandAnswers();
  }
  // Such as offscreen, which needs none.
  return !platform.empty() || x11Answers() || waylandAnswers();
}

std::vector<std::string> desktopEnvironment() {
  std::vector<std::string> environment;
  for (const char* name : desktopVariables) {
    if (const std::string value = variable(name); !value.empty()) {
      environment.push_back(std::string(name) + "=" + value);
    }
  }
  return environment;
}

void joinDesktop(const std::vector<std::string>& environment) {
  for (const std::string& entry : environment) {
    const auto equals = entry.find('=');
    const std::string name = entry.substr(0, equals);
    const bool isKnown = std::any_of(desktopVariables.begin(), desktopVariables.end(),
                                     [&](std::string_view known) { return known == name; });
    if (isKnown && equals != std::string::npos) {
      setenv(name.c_str(), entry.c_str() + equals + 1, 1);
    }
  }
}

}  // namespace plemora
