#pragma once

#include <functional>
#include <string>
#include <vector>

namespace plemora {

/// A program with its arguments.
using Command = std::vector<std::string>;

/// Opens URLs with what the desktop has for them. "x-apple.systempreferences:" links lead to the
/// desktop's own settings. Main thread.
class UrlOpener {
 public:
  struct Desktop {
    std::string names;  ///< as XDG_CURRENT_DESKTOP: the most exact name first, with colons
    /// Absolute path of an installed program; empty when there is none of that name.
    std::function<std::string(const std::string& program)> locate;
    /// Starts the command without waiting for it; false when that fails.
    std::function<bool(const Command& command)> start;
  };

  explicit UrlOpener(Desktop desktop);
  /// For the desktop that this process runs in.
  UrlOpener();

  /// False, with a message in the log, when there is no program for it.
  bool open(const std::string& url) const;

 private:
  bool startFirst(const std::vector<Command>& commands) const;

  Desktop desktop_;
};

/// Opens the URL with the program that the desktop has for it, without waiting for it. False when
/// there is none.
bool openWithDesktop(const std::string& url);

}  // namespace plemora
