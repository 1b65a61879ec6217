#include "main/stage/stage_options.h"

#include <charconv>
#include <cmath>
#include <cstddef>

namespace plemora {

namespace {

constexpr double largestScale = 4;
constexpr double slowest = 0.05;
constexpr double fastest = 20;

std::optional<double> numberIn(const std::string& text, double least, double most) {
  double value = 0;
  const char* end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, value);
  if (error != std::errc() || rest != end || !std::isfinite(value) || value < least ||
      value > most) {
    return std::nullopt;
  }
  return value;
}

std::string wallpaperNames() {
  std::string names;
  for (const NamedWallpaper& entry : stageWallpapers()) {
    names += (names.empty() ? "" : ", ") + std::string(entry.name);
  }
  return names;
}

/// Walks through the arguments; stops at the first that is wrong.
class Reader {
 public:
  Reader(std::span<const std::string> arguments, std::string& problem)
      : arguments_(arguments), problem_(problem) {}

  std::optional<StageOptions> read() {
    while (index_ < arguments_.size()) {
      if (!readOne(arguments_[index_++])) {
        return std::nullopt;
      }
    }
    return isConsistent() ? std::optional(options_) : std::nullopt;
  }

 private:
  bool readOne(const std::string& argument) {
    if (argument == "--help" || argument == "-h") {
      options_.wantsHelp = true;
    } else if (argument == "--offscreen") {
      options_.isOffscreen = true;
    } else if (argument == "--dark" || argument == "--light") {
      options_.isDark = argument == "--dark";
    } else if (argument == "--scenario") {
      return readText(argument, "the file of a scenario", options_.scenario);
    } else if (argument == "--screenshots") {
      return readText(argument, "a folder for the pictures", options_.screenshots);
    } else if (argument == "--tour") {
      return readText(argument, "a folder for the pictures", options_.tour);
    } else if (argument == "--skin") {
      return readText(argument, "a folder for the pictures", options_.skin);
    } else if (argument == "--preferences") {
      return readText(argument, "a folder of preferences", options_.preferences);
    } else if (argument == "--preferences-host") {
      return readText(argument, "the name of a machine", options_.preferencesHost);
    } else if (argument == "--audio") {
      return readAudio();
    } else if (argument == "--wallpaper") {
      return readWallpaper();
    } else if (argument == "--scale") {
      return readNumber(argument, 1, largestScale, "1 to 4",
                        [this](double value) { options_.scale = value; });
    } else if (argument == "--speed") {
      return readNumber(argument, slowest, fastest, "0.05 to 20",
                        [this](double value) { options_.speed = value; });
    } else {
      return refuse((argument.starts_with('-') ? "unknown option \"" : "unexpected argument \"") +
                    argument + "\"");
    }
    return true;
  }

  /// Null: there is none.
  const std::string* next() { return index_ < arguments_.size() ? &arguments_[index_++] : nullptr; }

  bool readText(const std::string& name, const char* what, std::optional<std::string>& to) {
    const std::string* value = next();
    if (value == nullptr || value->empty()) {
      return refuse(name + " needs " + what + " after it");
    }
    to = *value;
    return true;
  }

  bool readAudio() {
    const std::string* value = next();
    if (value == nullptr || (*value != "simulated" && *value != "pipewire")) {
      return refuse("--audio needs \"simulated\" or \"pipewire\" after it");
    }
    options_.audio =
        *value == "pipewire" ? StageOptions::Audio::pipewire : StageOptions::Audio::simulated;
    return true;
  }

  bool readWallpaper() {
    const std::string* value = next();
    options_.wallpaper = value != nullptr ? stageWallpaperNamed(*value) : std::nullopt;
    return options_.wallpaper.has_value() ||
           refuse("--wallpaper needs one of these names after it: " + wallpaperNames());
  }

  template <typename Set>
  bool readNumber(const std::string& name, double least, double most, const char* range, Set set) {
    const std::string* text = next();
    const auto value = text != nullptr ? numberIn(*text, least, most) : std::nullopt;
    if (!value) {
      return refuse(name + " needs a number from " + range + " after it");
    }
    set(*value);
    return true;
  }

  bool isConsistent() {
    if (options_.tour && (options_.scenario || options_.screenshots)) {
      return refuse("--tour is a scenario of its own: leave out --scenario and --screenshots");
    }
    if (options_.skin && (options_.tour || options_.scenario || options_.screenshots)) {
      return refuse(
          "--skin makes pictures of its own: leave out --tour, --scenario and --screenshots");
    }
    if (options_.screenshots && !options_.scenario) {
      return refuse("--screenshots needs a --scenario that takes them, or use --tour");
    }
    if (options_.isOffscreen && !options_.scenario && !options_.tour && !options_.skin &&
        !options_.wantsHelp) {
      return refuse("--offscreen shows nothing by itself: add --scenario or --tour");
    }
    if (options_.skin && options_.preferences) {
      return refuse("--skin sets up stages of its own: leave out --preferences");
    }
    if (options_.preferencesHost && !options_.preferences) {
      return refuse("--preferences-host names files in the folder of --preferences");
    }
    const bool isScript = options_.isOffscreen || options_.tour || options_.skin;
    if (isScript && options_.audio == StageOptions::Audio::pipewire) {
      return refuse("--audio pipewire needs real time, so it goes with the window alone");
    }
    return true;
  }

  bool refuse(std::string problem) {
    problem_ = std::move(problem);
    return false;
  }

  std::span<const std::string> arguments_;
  std::string& problem_;
  std::size_t index_ = 0;
  StageOptions options_;
};

}  // namespace

std::optional<StageOptions> parseStageOptions(std::span<const std::string> arguments,
                                              std::string& problem) {
  return Reader(arguments, problem).read();
}

std::string stageHelp() {
  return "usage: plemora-stage [OPTIONS]\n"
         "\n"
         "Shows Plemora on a simulated Mac desktop: menu bar, Control Center, System Settings,\n"
         "apps that play and devices to play to. Needs no Mac and, by default, no sound server.\n"
         "\n"
         "  --scenario FILE     play what the file says\n"
         "  --screenshots DIR   put the scenario's pictures into DIR\n"
         "  --offscreen         without a window; time runs as fast as it can\n"
         "  --tour DIR          show every part of the program, as pictures in DIR; no window\n"
         "                      (the default where no display answers, in a temporary folder)\n"
         "  --skin DIR          the layers of the module in Control Center, as pictures in DIR, "
         "and\n"
         "                      a table of how far it differs from the system's own; no window\n"
         "  --preferences DIR   keep Control Center's layout and the program's settings in DIR, "
         "as\n"
         "                      property lists; what is there already is taken up\n"
         "  --preferences-host NAME\n"
         "                      the machine in the names of files there (default: this one's id)\n"
         "  --audio KIND        simulated (default), or pipewire: the sliders move real sound\n"
         "  --dark, --light     the desktop's appearance\n"
         "  --wallpaper NAME    " +
         wallpaperNames() +
         "\n"
         "  --scale N           pixels to the point, 1 to 4 (default: the window's; 2 for files)\n"
         "  --speed N           how fast time runs in the window, 0.05 to 20 (default 1)\n"
         "  -h, --help          this text\n"
         "\n"
         "Exit status: 0 ended; 1 failed, or the scenario's expectations were not met; 2 wrong\n"
         "options.\n";
}

}  // namespace plemora
