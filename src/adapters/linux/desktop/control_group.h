#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace plemora {

/// What the name of a process's control group says of the app that it belongs to.
struct ControlGroupApp {
  enum class Kind {
    none,
    flatpak,  ///< ids[0] is the id of the sandboxed app
    snap,     ///< ids[0] is the instance, ids[1] the app in it
    unit,     ///< ids are the ids that the desktop entry may have, the likeliest first
  };
  Kind kind = Kind::none;
  std::vector<std::string> ids;
};

/// Reads a path such as "/user.slice/.../app.slice/app-gnome-org.example.Player-1234.scope". The
/// innermost unit that says something counts. A tab of a terminal says nothing.
ControlGroupApp controlGroupApp(std::string_view path);

}  // namespace plemora
