#include "main/program_options.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string_view>
#include <vector>

#include "controlcenter/panel_url.h"

namespace plemora {

namespace {

// The settings that make sense for one run alone, given as "-name value".
constexpr std::string_view settings[] = {
    "appRowStyle", "detailStyle", "detailStyle.dark", "detailStyle.light", "look",
    "release",     "showMeters",  "skinStyle",        "skinStyle.dark",    "skinStyle.light",
};

bool isSetting(std::string_view argument) {
  return argument.starts_with('-') && std::find(std::begin(settings), std::end(settings),
                                                argument.substr(1)) != std::end(settings);
}

}  // namespace

std::optional<ProgramOptions> parseProgramOptions(std::span<const std::string> arguments,
                                                  std::string& problem) {
  ProgramOptions options;
  std::vector<std::string> urls;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    if (argument == "--no-ui") {
      options.withoutWindow = true;
    } else if (argument == "--setup") {
      options.setsUp = true;
    } else if (argument == "--open") {
      options.opensPanel = true;
    } else if (argument == "--help" || argument == "-h") {
      options.wantsHelp = true;
    } else if (argument == "--version") {
      options.wantsVersion = true;
    } else if (!mixerURLs(arguments.subspan(i, 1)).empty()) {
      urls.push_back(argument);
    } else if (argument == "-demo") {
      if (++i == arguments.size()) {
        problem = "-demo needs a JSON configuration after it, in quotes";
        return std::nullopt;
      }
    } else if (isSetting(argument)) {
      if (++i == arguments.size()) {
        problem = argument + " needs its value after it";
        return std::nullopt;
      }
    } else if (argument == "--screenshots") {
      if (++i == arguments.size() || arguments[i].empty()) {
        problem = "--screenshots needs the folder to draw the pictures into after it";
        return std::nullopt;
      }
      options.screenshots = arguments[i];
    } else if (const auto taken = takeScriptOption(arguments, i, options.script, problem); !taken) {
      return std::nullopt;
    } else if (!*taken && argument != "--log-levels") {
      problem = (argument.starts_with('-') ? "unknown option \"" : "unexpected argument \"") +
                argument + "\"";
      return std::nullopt;
    }
  }
  if (!options.script.action && (options.script.preferences || options.script.preferencesHost)) {
    problem = "--preferences and --preferences-host go with --replace-sound or --restore-sound";
    return std::nullopt;
  }
  options.hasURL = !urls.empty();
  options.hasPanelURL = PanelRequest::of(urls).has_value();
  return options;
}

std::string programHelp() {
  return "usage: plemora [OPTIONS]\n"
         "\n"
         "Gives every app its own volume, mute and output device. One instance runs in a user\n"
         "session; a second start hands its arguments to the first. plemoractl controls it.\n"
         "\n"
         "  --no-ui            run without a window, as a service\n"
         "  --open             show the panel\n"
         "  --setup            show setup, as the first start does; goes before --open\n"
         "  --log-levels       log what each tapped app plays, every 2 seconds\n"
         "  -demo JSON         show prepared rows and touch no sound\n"
         "  -SETTING VALUE     a setting for this run alone: showMeters, appRowStyle, release, "
         "look,\n"
         "                     detailStyle or skinStyle\n"
         "  --screenshots DIR  draw the panel in all its states into DIR, and end; needs no "
         "display\n"
         "  --replace-sound    put Plemora in the place of Sound in the Control Center layout of\n"
         "                     the preferences below DIR; prints \"ok\" or \"failed: ...\", ends "
         "with 0\n"
         "  --restore-sound    put the layout back as it was before the first replacement\n"
         "  --prime-controls   have Control Center take notice; prints \"primed\"\n"
         "  --preferences DIR  where those preferences are, as property-list files\n"
         "  --preferences-host NAME\n"
         "                     this machine's name in them; without it, its id\n"
         "  -h, --help         this text\n"
         "  --version          the version\n"
         "\n"
         "Exit status: 0 ended, or handed over to the running instance; 1 failed; 2 wrong "
         "options.\n";
}

}  // namespace plemora
