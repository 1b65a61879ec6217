#pragma once

#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "base/geometry.h"
#include "main/stage/scenario_conditions.h"

namespace plemora {

// A scenario: a file that sets the stage and says what happens on it. docs/scenarios.md describes
// the language; these are its words. Times in seconds, places in points of the global space with y
// down from the top left corner of the main screen, as somebody reads a picture.

struct ScenarioScreen {
  double width = 1440, height = 900;
  double x = 0, y = 0;
  double scale = 2;
};

struct ScenarioDevice {
  std::string uid;
  std::string name;
  std::string transport = "built-in";  ///< one of scenarioTransports
  std::optional<double> volume = 0.6;  ///< none: it has none that can be set
  bool isMuted = false;
};

/// An application that plays a tone.
struct ScenarioPlayer {
  std::string name;
  double loudness = 0.2;   ///< amplitude, 0...1
  double frequency = 440;  ///< Hz
};

/// What Control Center's preferences hold when the curtain rises.
enum class ScenarioLayout {
  fresh,     ///< as a new system has them
  replaced,  ///< with the program's tiles in the place of Sound
  noSound,   ///< the user has taken Sound out
  unknown,   ///< in a form that nobody has seen yet
  missing,   ///< nothing
};

enum class ScenarioConsent { granted, refused, undecided };

/// A setting of the program; none: absent.
using ScenarioSetting = std::variant<std::monostate, bool, std::string>;

/// How Control Center falls short of what it should be.
struct ScenarioControlCenter {
  std::optional<double> openDelay;  ///< from the press on its icon to its panel
  std::optional<double> editDelay;  ///< from the press on its edit button to edit mode
  std::optional<bool> ignoresEditButton;
  std::optional<double> relaunchDelay;  ///< from its end to its return
  std::optional<bool> staysDown;        ///< once ended, it is not started again
  std::optional<double> tileGap;        ///< points between two tiles of a row
};

/// The state of the world, or what changes about it; what is none stays as it is.
struct ScenarioWorld {
  std::optional<std::vector<ScenarioScreen>> screens;
  std::optional<bool> isDark;
  std::optional<std::string> wallpaper;
  std::optional<bool> isTrusted;  ///< for accessibility
  std::optional<ScenarioConsent> consent;
  std::optional<std::string> systemVersion;  ///< as people read it
  std::optional<std::string> build;          ///< of the program
  std::optional<ScenarioLayout> layout;
  /// As a system update does it: Control Center shows no third party's control any more until its
  /// edit mode was left again.
  bool forgetsControls = false;
  ScenarioControlCenter controlCenter;
  std::map<std::string, ScenarioSetting> defaults;

  // Only when the curtain rises.
  std::optional<std::vector<ScenarioDevice>> devices;  ///< the first one is the default
  std::optional<std::vector<ScenarioPlayer>> players;
  std::vector<std::string> arguments;  ///< of every start of the program that names none
};

/// Who can be started, ended and asked for: a player by its name, or one of these.
inline constexpr std::string_view scenarioProgram = "Plemora";
inline constexpr std::string_view scenarioControlCenter = "Control Center";

/// What the pointer aims at.
struct ScenarioTarget {
  enum class Kind {
    statusItem,
    controlCenterItem,
    editButton,     ///< of Control Center
    desktop,        ///< a place where there is nothing
    module,         ///< of the program over its tiles, beside the slider
    moduleSlider,   ///< the middle of its slider
    tile,           ///< in Control Center, by its name and index
    removeBadge,    ///< in edit mode, of a tile
    galleryEntry,   ///< in edit mode, by its name
    menuEntry,      ///< of the menu that is open, by its title
    panel,          ///< a control in the mixer panel, by what a screen reader calls it
    settings,       ///< a switch in System Settings, by its label
    closeSettings,  ///< the button that closes System Settings
    settingsBar,    ///< the title bar of System Settings
    closeSetup,     ///< the same of the setup window
    setupBar,
    prompt,  ///< a button of the question for consent, by its label
    dock,    ///< an icon in the Dock, by the application's name
    player,  ///< the button that pauses and resumes a player, by its name
    point,
  };
  Kind kind = Kind::desktop;
  std::string name;
  int index = 0;  ///< among tiles of one name, in reading order
  Point point;
};

struct StartStep {
  std::string program;
  std::optional<std::vector<std::string>> arguments;
};
/// The orderly way.
struct QuitStep {
  std::string program;
};
struct KillStep {
  std::string program;
};
/// Opens Control Center, a program by its name, or a URL.
struct OpenStep {
  enum class Kind { controlCenter, program, url };
  Kind kind = Kind::controlCenter;
  std::string name;
};
struct ClickStep {
  enum class Button { left, right, middle };
  ScenarioTarget target;
  Button button = Button::left;
};
struct DragStep {
  ScenarioTarget from;
  Point to;
};
/// Puts a slider of the panel where it is wanted.
struct SlideStep {
  std::string name;
  double to = 0;
};
struct TypeStep {
  std::string text;
};
struct KeyStep {
  std::string key;  ///< one of scenarioKeys
};
struct ScrollStep {
  ScenarioTarget target;
  int notches = 0;  ///< positive is up
};
/// Lets time pass; with conditions, until they hold, which they must within that time.
struct WaitStep {
  double seconds = 0;
  std::optional<ScenarioConditions> until;
};
struct PlugStep {
  ScenarioDevice device;
};
struct PullStep {
  std::string uid;
};
struct PlayStep {
  ScenarioPlayer player;
};
struct ChangeStep {
  ScenarioWorld world;
};
struct FailStep {
  enum class What {
    nothing,  ///< all faults to come are forgotten
    preferenceRead,
    preferenceWrite,  ///< what is set never gets there
    preferenceSynchronize,
    fileRead,
    fileWrite,
    fileRemove,
    accessibilityCall,
  };
  What what = What::nothing;
  int times = 1;       ///< how many calls fail; negative: all
  int after = 0;       ///< how many calls succeed before that
  bool kills = false;  ///< the program is killed there, instead of being told

  // Of accessibility calls.
  std::string of{};       ///< the attribute or the action; empty: any
  bool vanishes = false;  ///< the element that is asked does not come back
};
/// Keeps Control Center's two preference values under a name, for a later comparison.
struct RememberStep {
  std::string name;
};
struct ExpectStep {
  ScenarioConditions conditions;
};
struct ScreenshotStep {
  std::string name;
};

using ScenarioAction =
    std::variant<StartStep, QuitStep, KillStep, OpenStep, ClickStep, DragStep, SlideStep, TypeStep,
                 KeyStep, ScrollStep, WaitStep, PlugStep, PullStep, PlayStep, ChangeStep, FailStep,
                 RememberStep, ExpectStep, ScreenshotStep>;

struct ScenarioStep {
  std::string verb;  ///< as in the file
  std::string note;  ///< why, for whoever reads the file
  ScenarioAction action;
};

struct Scenario {
  std::string file;  ///< as in messages
  std::string about;
  ScenarioWorld stage;
  std::vector<ScenarioStep> steps;
};

/// A file that cannot be understood: what() names the file, the step, what is wrong with it and
/// what is allowed.
class ScenarioError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The file names the text in messages. Throws ScenarioError.
Scenario parseScenario(std::string_view text, const std::string& file);

/// Reads the file at that path. Throws ScenarioError.
Scenario loadScenario(const std::string& path);

}  // namespace plemora
